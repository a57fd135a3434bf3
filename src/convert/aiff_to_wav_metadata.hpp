// Maps the markers and the instrument of an AIFF file onto WAV: sustain and release loop become
// loops of the smpl chunk, every marker that no loop uses a cue point, tuning and ranges the
// smpl header and the inst chunk.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "aiff/aiff_format.hpp"
#include "vocabulary/results.hpp"
#include "wav/wav_format.hpp"

namespace corvana {

/// What a WAV file keeps of an AIFF file's metadata.
struct WavMetadata {
  std::vector<CuePoint> cuePoints;  ///< in marker order
  std::vector<SampleLoop> loops;    ///< at most two, sustain loop first
  /// Present exactly when the AIFF file has an instrument; the smpl chunk goes with it.
  std::optional<InstrumentChunk> instrument;
  std::uint32_t unityNote = 0;      ///< for the smpl chunk
  std::uint32_t pitchFraction = 0;  ///< for the smpl chunk, in 2^32ths of a semitone
  std::optional<int> rootKey;       ///< for the summary, a MIDI note number
  int fineTune = 0;                 ///< for the summary, cents
};

/// `framesUsed` is the number of frames that the WAV file will hold. Appends a warning for
/// whatever WAV cannot hold. Never fails.
WavMetadata mapLoopsAndMarkers(const AiffInfo& info, std::uint32_t framesUsed, Warnings& warnings);

}  // namespace corvana
