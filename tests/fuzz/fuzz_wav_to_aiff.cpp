// Any WAV file becomes an AIFF file that our own reader understands in the same way.
#include "aiff/aiff_reader.hpp"
#include "convert/plan_wav_to_aiff.hpp"
#include "fuzz/conversion.hpp"
#include "wav/wav_reader.hpp"

using namespace corvana;

namespace {

void check(ByteView content, const ConversionOptions& options) {
  const auto output = fuzz::convert(planWAVToAIFF, content, options);
  if (!output) return;
  const WavInfo before = parseWav(content, options.anyEncoding);
  if (before.sampleRate >= 4'000'000'000) return;  // written, but more than our reader takes
  const AiffInfo after = parseAiff(*output, options.anyEncoding);
  const std::uint64_t frames =
      before.dataSize / (std::uint64_t{before.channels} * before.bytesPerSample);
  assert(output->size() == std::uint64_t{8} + Fields(*output, ByteOrder::big).u32(4));
  assert(after.frameCount == frames);
  assert(after.channels == before.channels);
  assert(after.encoding == before.encoding);
  assert(after.sampleSize == before.bitsPerSample);
  assert(after.sampleRate == before.sampleRate);
  assert(after.soundSize == frames * after.channels * ((after.sampleSize + 7U) / 8));
  assert(after.instrument.has_value() == (before.loops || before.instrument));

  // The first two loops that hold a frame are the sustain and the release loop.
  int kept = 0;
  for (const SampleLoop loop : before.loops.value_or(SampleLoopView())) {
    if (loop.start > loop.end || loop.start >= frames || kept == 2) continue;
    const AiffLoop& written =
        kept++ == 0 ? after.instrument->sustainLoop : after.instrument->releaseLoop;
    const auto positionOf = [&](int id) {
      return after.markers.at(static_cast<std::size_t>(id - 1)).position;
    };
    assert(positionOf(written.beginMarker) == loop.start);
    assert(positionOf(written.endMarker) ==
           std::min<std::uint64_t>(std::uint64_t{loop.end} + 1, frames));
  }
  if (after.instrument) {
    assert((after.instrument->sustainLoop.playMode != play_mode::none) == (kept > 0));
    assert((after.instrument->releaseLoop.playMode != play_mode::none) == (kept == 2));
  }
  for (std::size_t i = 0; i < after.markers.size(); ++i) {
    assert(after.markers[i].id == static_cast<int>(i + 1));
    assert(after.markers[i].position <= frames);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::convert(planWAVToAIFF, {data, size}, {.keepNames = true, .keepTexts = true});
  for (const bool anyEncoding : {false, true})
    check({data, size}, {.anyEncoding = anyEncoding});
  return 0;
}
