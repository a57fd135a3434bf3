// Any WAV file becomes an AIFF file that our own reader understands in the same way.
#include "aiff/aiff_reader.hpp"
#include "convert/plan_wav_to_aiff.hpp"
#include "fuzz/conversion.hpp"
#include "wav/wav_reader.hpp"

namespace {

using namespace corvana;

std::uint64_t positionOf(const AiffInfo& info, std::int16_t id) {
  for (const AiffMarker& marker : info.markers)
    if (marker.id == id) return marker.position;
  REQUIRE(id == 0 && "every loop has its markers");
  return 0;
}

void requireLoop(const AiffInfo& info, const AiffLoop& loop,
                 const std::optional<SampleLoop>& source) {
  REQUIRE((loop.playMode != play_mode::none) == source.has_value());
  if (!source) return;
  REQUIRE(positionOf(info, loop.beginMarker) == source->start);
  REQUIRE(positionOf(info, loop.endMarker) ==
          std::min<std::uint64_t>(std::uint64_t{source->end} + 1, info.frameCount));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto output = fuzz::convert(planWAVToAIFF, {data, size});
  if (!output) return 0;
  const WavInfo before = parseWav({data, size});
  if (before.sampleRate >= 4'000'000'000) return 0;  // written, but more than our reader takes
  const AiffInfo after = parseAiff(*output);
  const std::uint64_t frames =
      before.dataSize / (std::uint64_t{before.channels} * before.bytesPerSample);
  REQUIRE(output->size() == std::uint64_t{8} + Fields(*output, ByteOrder::big).u32(4));
  REQUIRE(after.frameCount == frames);
  REQUIRE(after.channels == before.channels);
  REQUIRE(after.sampleSize == before.bitsPerSample);
  REQUIRE(after.sampleRate == before.sampleRate);
  REQUIRE(after.soundSize == frames * after.channels * ((after.sampleSize + 7U) / 8));
  REQUIRE(after.instrument.has_value() == (before.loops || before.instrument));

  // The first two loops that hold a frame are the sustain and the release loop.
  std::optional<SampleLoop> kept[2];
  std::size_t count = 0;
  if (before.loops)
    for (const SampleLoop loop : *before.loops)
      if (loop.start <= loop.end && loop.start < frames && count < 2) kept[count++] = loop;
  if (after.instrument) {
    requireLoop(after, after.instrument->sustainLoop, kept[0]);
    requireLoop(after, after.instrument->releaseLoop, kept[1]);
  }
  for (std::size_t i = 0; i < after.markers.size(); ++i) {
    REQUIRE(after.markers[i].id == static_cast<int>(i + 1));
    REQUIRE(after.markers[i].position <= frames);
  }
  return 0;
}
