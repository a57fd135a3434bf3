// Converts one file into one file.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "output/output_file.hpp"
#include "platform/files.hpp"
#include "vocabulary/streams.hpp"

namespace corvana {

/// The outcome of one successful conversion. Its texts are in the user's language.
struct ConversionResult {
  std::filesystem::path outputURL;    ///< the file that was written
  std::string summary;                ///< one line, from makeSummary
  std::vector<std::string> warnings;  ///< in the order in which they arose
};

/// Fail with a ConversionError, or with a FileError from the file system. Nothing is written or
/// removed before the whole input but its samples has been read and found convertible.
ConversionResult convertWAVToAIFF(const InputFile& input, const OutputTarget& output,
                                  const ProgressHandler& progress);
ConversionResult convertAIFFToWAV(const InputFile& input, const OutputTarget& output,
                                  const ProgressHandler& progress);

}  // namespace corvana
