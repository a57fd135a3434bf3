// Moves the bytes of samples between the byte orders of the two formats. Works in memory only and
// calls no system, so that it builds for WebAssembly as well.
#pragma once

#include <cstdint>
#include <span>

#include "vocabulary/bytes.hpp"

namespace corvana {

/// How the bytes of a sample change on the way.
struct SampleConversion {
  std::uint32_t sourceWidth = 1;  ///< bytes per sample in the input, 1 to 4 or 8
  std::uint32_t outputWidth = 1;  ///< bytes per sample in the output, at most sourceWidth; 8 of 8
  bool reverseBytes = true;       ///< the byte orders differ
  bool turnSign = true;           ///< of single bytes: signed become unsigned, and back
};

/// Converts as many samples as `output` holds, output.size() / outputWidth; `source` holds at
/// least samples * sourceWidth bytes and does not overlap the output, which is big-endian where it
/// is narrower: then the least significant bytes of the source are dropped. For single-byte samples
/// there is no order; their top bit is inverted, or they are copied.
void convertSamples(const SampleConversion& conversion, ByteView source,
                    std::span<std::uint8_t> output);

/// What a kernel may expect of the processor.
enum class Processor {
  anyKind,        ///< nothing beyond what the program is compiled for
  shufflesBytes,  ///< an instruction that puts the bytes of a vector into any order
};

/// What this processor can do, and the program was compiled to make use of.
Processor thisProcessor();

/// The inner loop of convertSamples, with the same demands. Neither side needs an alignment.
using SampleKernel = void (*)(const std::uint8_t* source, std::uint8_t* output,
                              std::size_t samples);

/// The kernel for a conversion; `processor` is at most thisProcessor().
SampleKernel sampleKernel(const SampleConversion& conversion, Processor processor);

}  // namespace corvana
