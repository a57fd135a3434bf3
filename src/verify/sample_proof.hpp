// Compares samples by their values, whatever the bytes look like in which two files keep them.
#pragma once

#include <cstdint>

#include "verify/differences.hpp"
#include "vocabulary/bytes.hpp"
#include "vocabulary/streams.hpp"

namespace corvana {

/// The samples of a file, one behind the other. In either format they are left-justified.
struct SampleField {
  ByteView file;
  std::size_t offset = 0;   ///< of the first one
  std::uint32_t width = 1;  ///< bytes each, 1 to 4
  ByteOrder order = ByteOrder::little;
  bool isUnsigned = false;  ///< offset by half the range: those of one byte in WAV
};

/// How much of them is compared.
struct SampleRange {
  std::uint64_t frames = 0;  ///< that both files hold
  std::uint32_t channels = 1;
  std::uint32_t keptWidth = 4;  ///< bytes of an input's sample that the output is to keep
};

/// A sample of the output has to have the value of the input's, less the bytes that are not kept.
/// `progress` may be empty; what it throws ends the comparison.
void compareSamples(const SampleField& input, const SampleField& output, const SampleRange& range,
                    Differences& differences, const ProgressHandler& progress);

}  // namespace corvana
