// One conversion from bytes to bytes.
#pragma once

#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

#include "convert/aiff_to_wav.hpp"
#include "convert/wav_to_aiff.hpp"
#include "support/temporary_folder.hpp"

namespace corvana::test {

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
  Converted converted;
  const ProgressHandler progress = [&](double fraction) { converted.progress.push_back(fraction); };
  ConversionResult result = input.at(0) == 'F' ? convertAIFFToWAV(file, target, progress)
                                               : convertWAVToAIFF(file, target, progress);
  EXPECT_EQ(result.outputURL, target.url);
  converted.file = readFile(target.url);
  converted.summary = std::move(result.summary);
  converted.warnings = std::move(result.warnings);
  return converted;
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

/// `count` bytes without a pattern that a wrong offset could repeat.
inline ByteBuffer noise(std::size_t count) {
  ByteBuffer samples(count);
  std::uint32_t state = 1;
  for (std::uint8_t& sample : samples)
    sample = static_cast<std::uint8_t>((state = state * 1664525 + 1013904223) >> 24);
  return samples;
}

}  // namespace corvana::test
