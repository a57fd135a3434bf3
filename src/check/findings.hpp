// What is wrong with a file, as records.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "vocabulary/errors.hpp"
#include "vocabulary/language.hpp"
#include "vocabulary/warnings.hpp"

namespace corvana {

enum class Severity {
  note,     ///< unusual, without any consequence for programs that read carefully
  warning,  ///< programs may differ in what they make of it
  error,    ///< something of the file is lost or damaged
};

enum class FindingKind {
  // The framing. Chunks are named by their ID and the offset of their header.
  containerSize,     ///< declared size of the file, real size; bytes
  chunkBeyondFile,   ///< chunk, offset, declared size, bytes that are there
  chunkID,           ///< offset of what is no ID
  chunkDoubled,      ///< chunk, offset
  chunkTooShort,     ///< chunk, offset, size, least size
  countBeyondChunk,  ///< chunk, offset, declared records, records that are there
  paddingMissing,    ///< chunk, offset
  paddingNotZero,    ///< chunk, offset
  trailingBytes,     ///< bytes behind the last chunk
  // The samples.
  frameSize,    ///< bytes a frame takes, bytes its samples need
  wholeFrames,  ///< bytes behind the last whole frame
  frameCount,   ///< frames declared, frames that are there
  // Loops; Finding::loop says which.
  loopBehindData,     ///< start, end, last frame
  loopEndExclusive,   ///< end, last frame
  loopEmpty,          ///< start, end
  loopOverlap,        ///< start of the other loop
  loopType,           ///< type
  loopMarkerMissing,  ///< marker ID
  loopSeam,           ///< jump, largest step around; of full scale
  // Markers and cue points.
  markerDoubled,     ///< ID
  markerID,          ///< ID
  markerBehindData,  ///< ID, position, number of frames
  strayLabel,        ///< ID
  // Keys and ranges.
  tuningsDisagree,  ///< cents
  rootKey,          ///< chunk, note
  fineTune,         ///< chunk, cents
  keyRange,         ///< low note, high note
  velocityRange,    ///< low velocity, high velocity
  // The report.
  notChecked,    ///< how many chunks, loops, or markers
  moreFindings,  ///< how many there were beyond maxFindings
};

/// One of a file's loops: its number in WAV, its role in AIFF.
using LoopName = std::variant<std::int64_t, LoopRole>;

struct Finding {
  /// What keeps a file from being read at all is an error of the reader.
  std::variant<FindingKind, ConversionError> what;
  Severity severity = Severity::error;
  std::optional<std::uint64_t> offset = {};  ///< bytes from the start of the file
  std::optional<std::int64_t> frame = {};
  std::optional<LoopName> loop = {};
  std::vector<MessageValue> values = {};  ///< as listed at the kind
};

/// Most findings that are kept of one file; one more then counts the further ones.
inline constexpr std::size_t maxFindings = 10'000;

/// The short name by which programs know a finding, "loop-behind-data" for example. Never changes.
const char* findingCode(const Finding& finding);

/// "error", "warning" or "note", for programs.
const char* severityCode(Severity severity);

/// The line that a person reads.
std::string findingText(const Finding& finding, const Language& language);

}  // namespace corvana
