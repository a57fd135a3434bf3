// Proves that an output holds what the rules of converting promise of its input. The rules are
// written a second time here: of the conversion, only the readers are shared.
#pragma once

#include "verify/differences.hpp"
#include "verify/sample_proof.hpp"
#include "vocabulary/bytes.hpp"
#include "vocabulary/conversion_options.hpp"

namespace corvana {

/// Whose output it is. Other programs may put chunks into another order, add some of their own and
/// fill fields that nobody reads, as long as nothing contradicts anything else.
enum class Producer { thisProgram, anyProgram };

/// What an output is judged by.
struct ProofTerms {
  Producer producer = Producer::thisProgram;
  ConversionOptions options = {};  ///< of the conversion
};

/// Everything that is not as promised, the samples last. Input and output are whole files, one WAV
/// and one AIFF or AIFF-C; an output that is not of the input's other format is a difference.
/// Fails with a ConversionError where the input cannot be read. `progress` is called as in a
/// conversion, but not with 1.0.
Differences proveConversion(ByteView input, ByteView output, const ProofTerms& terms,
                            const ProofHandler& progress);

}  // namespace corvana
