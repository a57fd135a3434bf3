// Compares an AIFF file with what the WAV file promises that it was made of.
#pragma once

#include "verify/prove_conversion.hpp"
#include "wav/wav_format.hpp"

namespace corvana {

/// Adds what is different, the samples last. `wav` is what `input` holds. Fails with a
/// ConversionError where `output` cannot be read.
void compareOutput(const WavInfo& wav, ByteView input, ByteView output, const ProofTerms& terms,
                   Differences& differences, const ProofHandler& progress);

}  // namespace corvana
