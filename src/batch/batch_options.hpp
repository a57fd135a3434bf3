// The settings of one batch.
#pragma once

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
  bool safe = false;  ///< OutputTarget::safe
};

}  // namespace corvana
