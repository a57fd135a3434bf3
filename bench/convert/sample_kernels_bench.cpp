// Bytes of input per second for every kernel, and for memcpy of as many bytes.

#include <benchmark/benchmark.h>
#include <cstring>

#include "convert/sample_kernels.hpp"

namespace {

using corvana::ByteBuffer;
using corvana::Processor;
using corvana::SampleConversion;

/// One block of a conversion: 1 MiB in, at most 1 MiB out. Input and output fit into the
/// last-level cache, but not into the one of a core.
constexpr std::size_t blockBytes = 1'048'576;

/// Sample data seldom starts at a round address in its file.
constexpr std::size_t dataOffset = 44;

void countBytes(benchmark::State& state) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(blockBytes));
}

void copyBlock(benchmark::State& state) {
  const ByteBuffer source(dataOffset + blockBytes, 1);
  ByteBuffer output(blockBytes);
  while (state.KeepRunning()) {
    std::memcpy(output.data(), source.data() + dataOffset, blockBytes);
    benchmark::DoNotOptimize(output.data());
    benchmark::ClobberMemory();
  }
  countBytes(state);
}

/// Bytes per sample in the input and in the output, whether bytes are reversed, the Processor.
void convertBlock(benchmark::State& state) {
  const SampleConversion conversion{static_cast<std::uint32_t>(state.range(0)),
                                    static_cast<std::uint32_t>(state.range(1)),
                                    state.range(2) != 0};
  const std::size_t samples = blockBytes / conversion.sourceWidth;
  const ByteBuffer source(dataOffset + blockBytes, 1);
  ByteBuffer output(samples * conversion.outputWidth);
  const corvana::SampleKernel kernel =
      corvana::sampleKernel(conversion, static_cast<Processor>(state.range(3)));
  while (state.KeepRunning()) {
    kernel(source.data() + dataOffset, output.data(), samples);
    benchmark::DoNotOptimize(output.data());
    benchmark::ClobberMemory();
  }
  countBytes(state);
}

void everyConversion(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgNames({"bytes", "to", "reversed", "shuffles"});
  for (int width = 1; width <= 4; ++width) {
    for (int outputWidth = width; outputWidth >= 1; --outputWidth)
      for (int processor = 0; processor <= static_cast<int>(corvana::thisProcessor()); ++processor)
        benchmark->Args({width, outputWidth, 1, processor});
    if (width > 1) benchmark->Args({width, width, 0, 0});
  }
}

BENCHMARK(copyBlock);
BENCHMARK(convertBlock)->Apply(everyConversion);

}  // namespace
