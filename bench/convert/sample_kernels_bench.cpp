// Bytes of input per second for every kernel, and for memcpy of as many bytes.

#include <benchmark/benchmark.h>
#include <cstring>
#include <string>

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
  for (auto round : state) {
    std::memcpy(output.data(), source.data() + dataOffset, blockBytes);
    benchmark::DoNotOptimize(output.data());
    benchmark::ClobberMemory();
  }
  countBytes(state);
}

void convertBlock(benchmark::State& state, const SampleConversion& conversion,
                  Processor processor) {
  const std::size_t samples = blockBytes / conversion.sourceWidth;
  const ByteBuffer source(dataOffset + blockBytes, 1);
  ByteBuffer output(samples * conversion.outputWidth);
  const corvana::SampleKernel kernel = corvana::sampleKernel(conversion, processor);
  for (auto round : state) {
    kernel(source.data() + dataOffset, output.data(), samples);
    benchmark::DoNotOptimize(output.data());
    benchmark::ClobberMemory();
  }
  countBytes(state);
}

std::string nameOf(const SampleConversion& conversion) {
  const std::string to = conversion.outputWidth == conversion.sourceWidth
                             ? ""
                             : " to " + std::to_string(8 * conversion.outputWidth);
  return std::to_string(8 * conversion.sourceWidth) + to + " bits" +
         (conversion.reverseBytes ? "" : " unchanged");
}

void registerConversion(const SampleConversion& conversion) {
  const auto add = [&](const std::string& kind, Processor processor) {
    benchmark::RegisterBenchmark((nameOf(conversion) + kind).c_str(), convertBlock, conversion,
                                 processor);
  };
  const bool isCopy = !conversion.reverseBytes;
  const bool hasShuffles = corvana::thisProcessor() == Processor::shufflesBytes;
  if (!isCopy && hasShuffles) add(", by shuffles", Processor::shufflesBytes);
  add(isCopy ? "" : ", any processor", Processor::anyKind);
}

const bool registered = [] {
  benchmark::RegisterBenchmark("memcpy", copyBlock);
  for (std::uint32_t sourceWidth = 1; sourceWidth <= 4; ++sourceWidth) {
    for (std::uint32_t outputWidth = sourceWidth; outputWidth >= 1; --outputWidth)
      registerConversion({sourceWidth, outputWidth, true});
    if (sourceWidth > 1) registerConversion({sourceWidth, sourceWidth, false});
  }
  return true;
}();

}  // namespace
