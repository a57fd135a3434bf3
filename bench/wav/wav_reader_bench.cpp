// The WAV reader on a file with very many cue points, all of them looked at.

#include <benchmark/benchmark.h>

#include "wav/little_endian.hpp"
#include "wav/wav_reader.hpp"
#include "wav/wav_writer.hpp"

namespace {

corvana::ByteBuffer wavWithCuePoints(std::uint32_t count) {
  std::vector<corvana::CuePoint> points;
  for (std::uint32_t i = 0; i < count; ++i)
    points.push_back({.id = i + 1, .position = 10 * i});
  corvana::ByteBuffer file;
  corvana::appendFourCC(file, "RIFF");
  corvana::appendUInt32LE(file, 0);  // readers go by the real length
  corvana::appendFourCC(file, "WAVE");
  corvana::appendChunk(file, "fmt ", corvana::buildFormatChunk({1, 16, 44100, 0}));
  corvana::appendChunk(file, "data", {});
  corvana::appendChunk(file, "cue ", corvana::buildCueChunk(points));
  return file;
}

void parseCuePoints(benchmark::State& state) {
  const auto count = static_cast<std::uint32_t>(state.range(0));
  const corvana::ByteBuffer file = wavWithCuePoints(count);
  while (state.KeepRunning())
    for (const corvana::CuePoint point : corvana::parseWav(file).cuePoints)
      benchmark::DoNotOptimize(point);
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(parseCuePoints)->Arg(3'000)->Arg(30'000)->Arg(300'000);

}  // namespace
