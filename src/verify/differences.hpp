// What an output holds otherwise than its input promises, as records.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "vocabulary/errors.hpp"
#include "vocabulary/warnings.hpp"

namespace corvana {

enum class DifferenceKind {
  unreadable,  ///< the output is not a file of the other format: `reason`
  // The sound.
  channels,
  sampleRate,  ///< Hz
  encoding,    ///< encodingCode
  bitDepth,
  frameCount,
  soundSize,  ///< bytes of sample data, of as many frames as the output says
  sample,     ///< frame, channel, offset
  // Loops. One that AIFF has as markers only, the third for example, differs in start and end.
  loopMissing,
  loopExtra,
  loopType,   ///< or play mode
  loopStart,  ///< frames, as the output's format counts them
  loopEnd,
  loopPlayCount,
  loopFraction,
  loopID,
  // Markers of AIFF.
  markerMissing,
  markerExtra,
  markerPosition,
  markerName,
  markerID,
  // Cue points of WAV.
  cuePointMissing,
  cuePointExtra,
  cuePointPosition,
  cuePointID,
  // The instrument.
  instrumentMissing,
  instrumentExtra,
  samplerMissing,  ///< the smpl chunk
  samplerExtra,
  rootKey,
  tuning,  ///< detune or fine tune, cents
  gain,    ///< dB
  lowKey,
  highKey,
  lowVelocity,
  highVelocity,
  unityNote,
  pitchFraction,
  samplePeriod,  ///< nanoseconds
  // The bytes around all that.
  formType,
  formatVersion,
  containerSize,
  chunkSize,
  chunkTwice,
  chunkOrder,
  chunkField,  ///< a field that nobody reads
  chunkText,   ///< the first byte that differs in a chunk of names or texts
  chunkMissing,
  paddingMissing,
  padding,  ///< a pad byte that is not zero
  strayBytes,
  notRestored,  ///< a reversible output that does not give its input back, or is no original
};

/// One difference. Numbers of loops, markers and cue points count from 1, frames from 0, channels
/// from 1; `offset` counts the bytes of the output.
struct Difference {
  DifferenceKind kind;
  std::optional<std::int64_t> number = {};  ///< of the loop, marker or cue point
  std::optional<std::int64_t> frame = {};
  std::optional<std::int64_t> channel = {};
  std::string chunk = {};                  ///< its ID, or empty
  std::optional<MessageValue> found = {};  ///< in the output
  std::optional<MessageValue> expected = {};
  std::optional<std::uint64_t> offset = {};
  std::optional<ConversionError> reason = {};
};

/// Most differences that are kept of one pair: where every sample differs, nobody reads them all.
inline constexpr std::size_t maxDifferences = 1'000;

/// All differences of one pair.
struct Differences {
  std::vector<Difference> kept;  ///< the first maxDifferences of them
  std::uint64_t count = 0;       ///< kept or not

  bool areThere() const { return count != 0; }
  void add(Difference difference) {
    if (++count <= maxDifferences) kept.push_back(std::move(difference));
  }
};

}  // namespace corvana
