// Compares a WAV file with what the AIFF file promises that it was made of.
#pragma once

#include "aiff/aiff_format.hpp"
#include "verify/prove_conversion.hpp"

namespace corvana {

/// Adds what is different, the samples last. `aiff` is what `input` holds. Fails with a
/// ConversionError where `output` cannot be read.
void compareOutput(const AiffInfo& aiff, ByteView input, ByteView output, const ProofTerms& terms,
                   Differences& differences, const ProofHandler& progress);

}  // namespace corvana
