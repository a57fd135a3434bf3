// The settings of one batch.
#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "platform/files.hpp"
#include "vocabulary/conversion_options.hpp"
#include "vocabulary/note_name.hpp"

namespace corvana {

/// What happens to an input whose name another input's output would take with overwriting on.
enum class InputClash {
  replace,   ///< it is replaced like any other file
  keepBoth,  ///< the output gets a numbered name
  fail,      ///< the other input is not converted
};

/// Which files of a batch are converted.
enum class Direction {
  both,
  toAIFF,  ///< WAV files only
  toWAV,   ///< AIFF files only
};

struct BatchOptions {
  bool useSubfolder = false;  ///< write into a subfolder named after the output format
  bool overwrite = false;     ///< replace existing files
  Direction direction = Direction::both;
  InputClash clash = InputClash::replace;
  bool safe = false;    ///< OutputTarget::safe
  bool verify = false;  ///< read each output back and prove it against its input
  /// The folder below which the tree of the inputs is built anew; empty: outputs stay beside them.
  std::filesystem::path outputFolder = {};
  bool preserveTimes = false;  ///< outputs get the times of their inputs
  bool skipExisting = false;   ///< leave out inputs whose output is up to date (currentOutput)
  /// How many files are converted at the same time; 0: as many as there are processors.
  unsigned jobs = 1;
  /// Make nothing and touch nothing: the log tells what the run would do.
  bool dryRun = false;
  ConversionOptions conversion = {};  ///< its root key does not count
  /// The octave of note 60 in the names of files, where inputs without a key get theirs from these.
  std::optional<int> rootKeysByMiddleC = {};

  /// What the batch does to those of the files that it reads.
  AccessTime accessTime() const { return preserveTimes ? AccessTime::stays : AccessTime::changes; }
};

/// The options with the root key of a file of this name; `middleC` is
/// BatchOptions::rootKeysByMiddleC.
inline ConversionOptions optionsForFile(ConversionOptions options, std::optional<int> middleC,
                                        std::string_view name) {
  if (middleC) options.rootKey = noteInFileName(name, *middleC);
  return options;
}

}  // namespace corvana
