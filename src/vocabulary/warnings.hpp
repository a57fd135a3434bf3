// What a conversion could not carry over exactly, as records.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace corvana {

/// Which of the two loops of an AIFF instrument.
enum class LoopRole { sustain, release };

/// A value inside a message: a whole number, a real number, a loop of an AIFF instrument, or
/// characters that are shown as they are.
using MessageValue = std::variant<std::int64_t, double, LoopRole, std::string>;

/// What was lost, with the values that belong to it.
enum class WarningKind {
  // WAV to AIFF. Loops are counted from 1.
  incompleteFrame,  ///< sample data that does not fill its last frame
  invalidLoop,      ///< loop, its start, its end
  backwardLoop,     ///< loop
  unknownLoopType,  ///< loop, its type
  playCount,        ///< loop, how often it plays
  loopsBeyondTwo,   ///< more loops than AIFF has a place for
  // AIFF to WAV.
  shortSoundData,   ///< frames that are there, frames declared
  roundedRate,      ///< rate in the AIFF file, rate in the WAV file, in Hz
  unknownPlayMode,  ///< loop role, its play mode
  missingMarkers,   ///< loop role
  invalidLoopRole,  ///< loop role, position of its begin marker, of its end marker
  clampedGain,      ///< the gain in the AIFF file, in dB
  // Both.
  rootFromName,  ///< the MIDI note
  editedSince,   ///< what was to be made again has other samples or sampler data, or is damaged
  // Names of markers and cue points: how many, the ID of the first one.
  nameCharacters,  ///< have characters that AIFF lacks
  longNames,       ///< or notes, of which AIFF holds less
  namesLeftOut,    ///< or notes, for which there is no place
  leftOut,         ///< up to maxShownLeftOut IDs of chunks; how many further ones, if any
  moreWarnings,    ///< how many there were beyond maxWarnings
};

/// Most chunks that a warning names.
inline constexpr std::size_t maxShownLeftOut = 8;

/// A problem that did not stop a conversion.
struct Warning {
  WarningKind kind;                  ///< what was lost
  std::vector<MessageValue> values;  ///< as listed at the kind
};

/// The warnings of one file, in the order in which they arose.
using Warnings = std::vector<Warning>;

/// Most warnings that are kept of one file: a hostile file has millions, and nobody reads them.
inline constexpr std::size_t maxWarnings = 10'000;

/// Adds a warning; behind maxWarnings of them one last record counts the further ones.
inline void addWarning(Warnings& warnings, Warning warning) {
  if (warnings.size() < maxWarnings) {
    warnings.push_back(std::move(warning));
  } else if (warnings.size() == maxWarnings) {
    warnings.push_back({WarningKind::moreWarnings, {std::int64_t{1}}});
  } else {
    ++std::get<std::int64_t>(warnings.back().values.front());
  }
}
/// The same of a warning with these values.
inline void addWarning(Warnings& warnings, WarningKind kind,
                       std::initializer_list<MessageValue> values = {}) {
  addWarning(warnings, Warning{kind, values});
}

/// Whether one of them names the chunks that are left out.
inline bool nameLeftOut(const Warnings& warnings) {
  return std::any_of(warnings.begin(), warnings.end(),
                     [](const Warning& warning) { return warning.kind == WarningKind::leftOut; });
}

}  // namespace corvana
