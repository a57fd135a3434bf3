// What a conversion gives back, and what it calls while it runs.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace corvana {

/// The warnings of one file, in the order in which they arose. Already localised.
using Warnings = std::vector<std::string>;

/// The outcome of one successful conversion.
struct ConversionResult {
  std::filesystem::path outputURL;  ///< the file that was written
  std::string summary;              ///< one line, from makeSummary
  Warnings warnings;
};

/// Takes the finished fraction of the current file, 0.0 to 1.0: after each block of sample data
/// (1.0 after the last), or once with 1.0 when the file has no frames. Called on the converting
/// thread; may be empty. What it throws ends the conversion.
using ProgressHandler = std::function<void(double fraction)>;

}  // namespace corvana
