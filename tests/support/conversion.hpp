// One conversion from bytes to bytes, and its failure.
#pragma once

#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

#include "convert/carry_out.hpp"
#include "convert/plan_aiff_to_wav.hpp"
#include "convert/plan_wav_to_aiff.hpp"
#include "vocabulary/bytes.hpp"

namespace corvana::test {

inline const Language english;

/// The text of the ConversionError that `action` ends with.
template <typename Action>
std::string errorOf(const Action& action) {
  try {
    action();
  } catch (const ConversionError& error) {
    return errorDescription(error, english);
  }
  return "no error";
}

inline std::string lines(const Warnings& warnings) {
  std::string text;
  for (const Warning& warning : warnings)
    text += warningText(warning, english) + "\n";
  return text;
}

struct Converted {
  ByteBuffer file;
  std::string summary;
  std::string warnings;  ///< a line each
  std::vector<double> progress;
};

/// In the direction that the first byte of `input` tells.
inline Converted convert(const ByteBuffer& input) {
  const ConversionPlan plan = input.at(0) == 'F' ? planAIFFToWAV(input) : planWAVToAIFF(input);
  MemorySink output;
  std::vector<double> progress;
  carryOut(plan, MemorySource(input), output,
           [&](double fraction) { progress.push_back(fraction); });
  EXPECT_EQ(output.bytes.size(), plan.outputSize());
  return {output.bytes, makeSummary(plan.summary, english), lines(plan.warnings), progress};
}

/// All values in one line, to compare records at a glance.
template <typename... Values>
std::string line(const Values&... values) {
  std::ostringstream text;
  (text << ... << values);
  return text.str();
}

}  // namespace corvana::test
