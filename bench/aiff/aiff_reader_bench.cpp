// The AIFF reader on a file with very many named markers.

#include <benchmark/benchmark.h>
#include <string>

#include "aiff/aiff_reader.hpp"
#include "aiff/big_endian.hpp"
#include "aiff/extended80.hpp"

namespace {

corvana::ByteBuffer aiffWithMarkers(std::uint32_t count) {
  corvana::ByteBuffer common;
  corvana::appendUInt16BE(common, 1);   // channels
  corvana::appendUInt32BE(common, 0);   // frames
  corvana::appendUInt16BE(common, 16);  // bits
  corvana::appendExtended80(common, 44100);
  corvana::ByteBuffer markers;
  corvana::appendUInt16BE(markers, static_cast<std::uint16_t>(count));
  for (std::uint32_t i = 0; i < count; ++i) {
    corvana::appendUInt16BE(markers, static_cast<std::uint16_t>(i + 1));
    corvana::appendUInt32BE(markers, 10 * i);
    corvana::appendPString(markers, "Marker number " + std::to_string(i));
  }
  corvana::ByteBuffer file;
  corvana::appendFourCC(file, "FORM");
  corvana::appendUInt32BE(file, 0);  // readers go by the real length
  corvana::appendFourCC(file, "AIFF");
  corvana::appendAiffChunk(file, "COMM", common);
  corvana::appendAiffChunk(file, "MARK", markers);
  corvana::appendAiffChunk(file, "SSND", corvana::ByteBuffer(8, 0));
  return file;
}

void parseMarkers(benchmark::State& state) {
  const auto count = static_cast<std::uint32_t>(state.range(0));
  const corvana::ByteBuffer file = aiffWithMarkers(count);
  while (state.KeepRunning())
    benchmark::DoNotOptimize(corvana::parseAiff(file));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(parseMarkers)->Arg(300)->Arg(3'000)->Arg(30'000);

}  // namespace
