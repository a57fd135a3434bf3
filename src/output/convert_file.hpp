// Converts one file into one file.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "convert/conversion_plan.hpp"
#include "output/output_file.hpp"
#include "platform/files.hpp"
#include "vocabulary/conversion_options.hpp"
#include "vocabulary/messages.hpp"
#include "vocabulary/streams.hpp"
#include "vocabulary/warnings.hpp"

namespace corvana {

/// The outcome of one successful conversion. Its texts are in the user's language.
struct ConversionResult {
  std::filesystem::path outputURL;    ///< the file that was written
  std::string summary;                ///< one line, from makeSummary
  std::vector<std::string> warnings;  ///< in the order in which they arose
  // The same for programs.
  Summary figures = {};
  Warnings warningRecords = {};
  std::vector<std::string> leftOut = {};  ///< ConversionPlan::leftOut
  std::uint32_t frames = 0;               ///< of the output
  std::uint64_t bytes = 0;                ///< of the output
  int timesError = 0;                     ///< OutputFile::timesError
};

/// What the conversion of this plan comes to.
ConversionResult resultOf(ConversionPlan plan, const OutputTarget& output);

/// Called when the output file is there, before anything is written to it.
using CreationHandler = std::function<void(const OutputFile& file)>;

/// Fail with a ConversionError, or with a FileError from the file system. Nothing is written or
/// removed before the whole input but its samples has been read and found convertible; `plan` is
/// what has come of that (planWAVToAIFF, planAIFFToWAV) with the same options where it is done
/// already.
ConversionResult convertWAVToAIFF(const InputFile& input, const OutputTarget& output,
                                  const ConversionOptions& options, const ProgressHandler& progress,
                                  const CreationHandler& created,
                                  std::optional<ConversionPlan> plan = std::nullopt);
ConversionResult convertAIFFToWAV(const InputFile& input, const OutputTarget& output,
                                  const ConversionOptions& options, const ProgressHandler& progress,
                                  const CreationHandler& created,
                                  std::optional<ConversionPlan> plan = std::nullopt);

}  // namespace corvana
