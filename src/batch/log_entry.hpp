// What the log says of a file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "batch/batch_options.hpp"
#include "vocabulary/failure.hpp"
#include "vocabulary/messages.hpp"
#include "vocabulary/warnings.hpp"

namespace corvana {

/// What became of a file.
enum class Outcome {
  converted,
  failed,
  skipped,  ///< BatchOptions::skipExisting; `lines` is empty
};

/// What the log says of one finished file, or of a batch without files: lines for people, records
/// for programs. A line holds the names and texts of files as they are, line feeds included.
struct LogEntry {
  /// What became of the file; then one for each warning, and one for `leftOut` in a dry run or
  /// where the conversion has options.
  std::vector<std::string> lines;
  std::optional<Outcome> outcome = {};  ///< none for a batch without files
  std::string input = {};               ///< path, as given or found
  /// Path of the file that was written, or that stands for a skipped one; empty where none is.
  std::string output = {};
  /// Never both; none where the format of the file is not known.
  std::optional<Direction> direction = {};
  Summary summary = {};                   ///< where converted, as the next two
  std::uint32_t frames = 0;               ///< written
  std::uint64_t bytes = 0;                ///< written
  Warnings warnings = {};                 ///< what the lines behind the first one say
  std::vector<std::string> leftOut = {};  ///< ConversionPlan::leftOut, where converted
  Failure failure = {};                   ///< where failed
  double seconds = 0;                     ///< that the file took

  /// The exact bytes, for programs. A line feed is to follow.
  std::string text() const;
  /// For people: no name drives the screen or passes for a further line. A line feed is to follow.
  std::string screenText() const;
};

}  // namespace corvana
