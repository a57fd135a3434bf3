// Converts one WAV file into one AIFF file.
#pragma once

#include "platform/files.hpp"
#include "vocabulary/output_file.hpp"
#include "vocabulary/results.hpp"

namespace corvana {

/// Fails with a ConversionError, or with a FileError from the file system. Nothing is written or
/// removed before the whole input but its samples has been read and found convertible.
ConversionResult convertWAVToAIFF(const InputFile& input, const OutputTarget& output,
                                  const ProgressHandler& progress);

}  // namespace corvana
