// Compares samples by their values, whatever the bytes look like in which two files keep them.
#pragma once

#include <cstdint>
#include <functional>

#include "verify/differences.hpp"
#include "vocabulary/bytes.hpp"
#include "vocabulary/sample_encoding.hpp"

namespace corvana {

/// The samples of a file, one behind the other. In either format they are left-justified.
struct SampleField {
  ByteView file;
  std::size_t offset = 0;   ///< of the first one
  std::uint32_t width = 1;  ///< bytes each, 1 to 4, or 8 in both files
  ByteOrder order = ByteOrder::little;
  bool isUnsigned = false;  ///< offset by half the range: those of one byte in WAV
};

/// How much of them is compared.
struct SampleRange {
  std::uint64_t frames = 0;  ///< that both files hold
  std::uint32_t channels = 1;
  std::uint32_t keptWidth = 4;  ///< bytes of an input's sample that the output is to keep
  /// Others than integers are the same to the last bit, in samples of the same width; differences
  /// of theirs are given in hexadecimal digits.
  SampleEncoding encoding = SampleEncoding::integer;
};

/// How far a comparison is: what lies ahead in either file is still to be read.
struct ProofProgress {
  double fraction = 0;  ///< below 1.0
  std::uint64_t inputOffset = 0;
  std::uint64_t outputOffset = 0;
};

/// Takes that now and then, on the comparing thread; may be empty. What it throws ends the
/// comparison.
using ProofHandler = std::function<void(const ProofProgress& progress)>;

/// A sample of the output has to have the value of the input's, less the bytes that are not kept.
/// `progress` is called at least once every 2 MiB of either file.
void compareSamples(const SampleField& input, const SampleField& output, const SampleRange& range,
                    Differences& differences, const ProofHandler& progress);

}  // namespace corvana
