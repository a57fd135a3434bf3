// Cue points for the markers of an AIFF file whose names are kept: names of WAV belong to cue
// points.
#pragma once

#include <cstdint>
#include <vector>

#include "aiff/aiff_format.hpp"
#include "aiff/aiff_texts.hpp"
#include "vocabulary/warnings.hpp"
#include "wav/wav_writer.hpp"

namespace corvana {

/// Adds cue points, labels and notes, and gives the loops of `metadata` their cue point IDs.
/// `loops` are these loops as the input has them. First come markers of loops that have a name of
/// their own or a comment, so that a cue point names the loop; then every other marker, but those
/// behind `framesUsed`. Says which names have no place.
void mapNamedMarkers(const AiffInfo& info, const AiffTextViews& texts,
                     const std::vector<AiffLoop>& loops, std::uint32_t framesUsed,
                     WavMetadata& metadata, Warnings& warnings);

}  // namespace corvana
