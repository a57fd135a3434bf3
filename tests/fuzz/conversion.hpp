// Whole conversions of fuzzed files; TMPDIR says where.
#pragma once

#include <algorithm>
#include <optional>

#include "fuzz/require.hpp"
#include "support/temporary_folder.hpp"
#include "vocabulary/errors.hpp"
#include "vocabulary/output_file.hpp"
#include "vocabulary/results.hpp"

namespace corvana::fuzz {

using Converter = ConversionResult (*)(const InputFile&, const OutputTarget&,
                                       const ProgressHandler&);

/// The content of the output; absent when the conversion ended with a ConversionError, which
/// then must not have made a file. Progress only rises, and to 1.
inline std::optional<ByteBuffer> convert(Converter converter, ByteView content) {
  static const test::TemporaryFolder folder;
  const std::filesystem::path path = folder.write("input", content);
  const std::filesystem::path output = folder / "output";
  std::filesystem::remove(output);
  double lastProgress = 0;
  bool converted = false;
  try {
    const InputFile input(path);
    const auto watch = [&](double fraction) {
      REQUIRE(fraction > lastProgress && fraction <= 1.0);
      lastProgress = fraction;
    };
    const ConversionResult result = converter(input, {output, false, input.identity()}, watch);
    REQUIRE(!result.summary.empty() && lastProgress == 1.0);
    converted = true;
  } catch (const ConversionError& error) {
    REQUIRE(error.kind() != ConversionError::Case::writeFailed);
    REQUIRE(!std::filesystem::exists(output));
  }
  REQUIRE(std::ranges::equal(test::readFile(path), content));
  if (!converted) return std::nullopt;
  return test::readFile(output);
}

}  // namespace corvana::fuzz
