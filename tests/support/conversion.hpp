// One conversion from bytes to bytes, and its failure.
#pragma once

#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

#include "convert/aiff_to_wav.hpp"
#include "convert/wav_to_aiff.hpp"
#include "support/temporary_folder.hpp"
#include "vocabulary/errors.hpp"

namespace corvana::test {

/// The text of the ConversionError that `action` ends with.
template <typename Action>
std::string errorOf(const Action& action) {
  try {
    action();
  } catch (const ConversionError& error) {
    return error.errorDescription();
  }
  return "no error";
}

struct Converted {
  ByteBuffer file;
  std::string summary;
  Warnings warnings;
  std::vector<double> progress;
};

/// In the direction that the first byte of `input` tells.
inline Converted convert(const ByteBuffer& input) {
  const TemporaryFolder folder;
  const InputFile file(folder.write("input", input));
  const OutputTarget target{folder / "output", false, file.identity()};
  std::vector<double> progress;
  const auto record = [&](double fraction) { progress.push_back(fraction); };
  const ConversionResult result = input.at(0) == 'F' ? convertAIFFToWAV(file, target, record)
                                                     : convertWAVToAIFF(file, target, record);
  EXPECT_EQ(result.outputURL, target.url);
  return {readFile(target.url), result.summary, result.warnings, progress};
}

/// All values in one line, to compare records at a glance.
template <typename... Values>
std::string line(const Values&... values) {
  std::ostringstream text;
  (text << ... << values);
  return text.str();
}

inline std::string lines(const Warnings& warnings) {
  std::string text;
  for (const std::string& warning : warnings)
    text += warning + "\n";
  return text;
}

}  // namespace corvana::test
