// Maps the sampler metadata of a WAV file onto AIFF: loops and cue points become markers, the
// first two loops become the sustain and release loop, tuning and ranges the instrument.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "aiff/aiff_format.hpp"
#include "vocabulary/conversion_options.hpp"
#include "vocabulary/warnings.hpp"
#include "wav/wav_format.hpp"
#include "wav/wav_texts.hpp"

namespace corvana {

/// What an AIFF file keeps of a WAV file's metadata.
struct AiffMetadata {
  std::vector<AiffMarker> markers;           ///< IDs from 1, consecutive, at most 32,766
  std::vector<AiffLoop> loops;               ///< every accepted loop, also the third and later
  std::optional<AiffInstrument> instrument;  ///< holds the first two loops
  std::vector<AiffComment> comments = {};    ///< on markers, where names are kept
};

/// `frameCount` is the number of whole frames. Appends a warning for whatever AIFF cannot hold.
/// `texts` count where names are kept.
AiffMetadata mapWavMetadata(const WavInfo& info, std::uint32_t frameCount,
                            const ConversionOptions& options, Warnings& warnings,
                            const WavTextViews& texts = {});

}  // namespace corvana
