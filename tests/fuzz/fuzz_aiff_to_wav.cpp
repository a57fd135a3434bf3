// Any AIFF file becomes a WAV file that our own reader understands in the same way.
#include <cmath>

#include "aiff/aiff_reader.hpp"
#include "convert/plan_aiff_to_wav.hpp"
#include "fuzz/conversion.hpp"
#include "wav/wav_reader.hpp"

using namespace corvana;

namespace {

void check(ByteView content, const ConversionOptions& options) {
  const auto output = fuzz::convert(planAIFFToWAV, content, options);
  if (!output) return;
  const AiffInfo before = parseAiff(content, options.anyEncoding);
  const WavInfo after = parseWav(*output, options.anyEncoding);
  const std::uint64_t frameSize = std::uint64_t{before.channels} * ((before.sampleSize + 7U) / 8);
  const std::uint64_t frames =
      std::min<std::uint64_t>(before.frameCount, before.soundSize / frameSize);
  assert(output->size() == std::uint64_t{8} + Fields(*output, ByteOrder::little).u32(4));
  assert(after.channels == before.channels);
  assert(after.encoding == before.encoding);
  assert(after.bitsPerSample == before.sampleSize);
  assert(after.sampleRate == std::round(before.sampleRate));
  assert(after.dataSize == frames * frameSize);
  assert(after.instrument.has_value() == before.instrument.has_value());
  assert(after.loops.has_value() == before.instrument.has_value());
  if (after.loops) {
    assert(after.loops->size() <= 2);
    for (const SampleLoop loop : *after.loops)
      assert(loop.start <= loop.end && loop.end < frames);
  }
  assert(after.cuePoints.size() <= before.markers.size());
  for (const CuePoint point : after.cuePoints)
    assert(point.position <= frames);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::convert(planAIFFToWAV, {data, size}, {.keepNames = true, .keepTexts = true});
  for (const bool anyEncoding : {false, true})
    check({data, size}, {.anyEncoding = anyEncoding});
  return 0;
}
