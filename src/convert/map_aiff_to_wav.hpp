// Maps the markers and the instrument of an AIFF file onto WAV: sustain and release loop become
// loops of the smpl chunk, every marker that no loop uses a cue point, tuning and ranges the
// smpl header and the inst chunk.
#pragma once

#include <cstdint>

#include "aiff/aiff_format.hpp"
#include "aiff/aiff_texts.hpp"
#include "vocabulary/conversion_options.hpp"
#include "vocabulary/warnings.hpp"
#include "wav/wav_writer.hpp"

namespace corvana {

/// What a WAV file keeps of an AIFF file's metadata: cue points in marker order, at most two loops,
/// the sustain loop first. `framesUsed` is the number of frames that the WAV file will hold.
/// Appends a warning for whatever WAV cannot hold. Never fails. `texts` count where names are kept.
WavMetadata mapLoopsAndMarkers(const AiffInfo& info, std::uint32_t framesUsed,
                               const ConversionOptions& options, Warnings& warnings,
                               const AiffTextViews& texts = {});

}  // namespace corvana
