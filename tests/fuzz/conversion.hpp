// Whole conversions of fuzzed files, from one memory file system file to another.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <system_error>

#include "fuzz/require.hpp"
#include "platform/files.hpp"
#include "vocabulary/bytes.hpp"
#include "vocabulary/errors.hpp"
#include "vocabulary/output_file.hpp"
#include "vocabulary/results.hpp"

namespace corvana::fuzz {

namespace fs = std::filesystem;

/// A folder that goes away with the program.
class Workshop {
 public:
  Workshop() {
    const bool hasMemory = fs::is_directory("/dev/shm");
    std::string name =
        (hasMemory ? fs::path("/dev/shm") : fs::temp_directory_path()) / "corvana-fuzz-XXXXXX";
    REQUIRE(::mkdtemp(name.data()) != nullptr);
    folder_ = name;
  }
  Workshop(const Workshop&) = delete;
  Workshop& operator=(const Workshop&) = delete;
  ~Workshop() { fs::remove_all(folder_); }

  fs::path input() const { return folder_ / "input"; }
  fs::path output() const { return folder_ / "output"; }

 private:
  fs::path folder_;
};

inline ByteBuffer readFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

using Converter = ConversionResult (*)(const InputFile&, const OutputTarget&,
                                       const ProgressHandler&);

/// The content of the output; absent when the conversion ended with a ConversionError, which
/// then must not have made a file. Progress only rises, and to 1.
inline std::optional<ByteBuffer> convert(Converter converter, ByteView content) {
  static const Workshop workshop;
  std::ofstream(workshop.input(), std::ios::binary)
      .write(reinterpret_cast<const char*>(content.data()),
             static_cast<std::streamsize>(content.size()));
  fs::remove(workshop.output());
  double lastProgress = 0;
  bool converted = false;
  try {
    const InputFile input(workshop.input());
    const OutputTarget target{workshop.output(), false, input.identity()};
    const ConversionResult result = converter(input, target, [&](double fraction) {
      REQUIRE(fraction > lastProgress && fraction <= 1.0);
      lastProgress = fraction;
    });
    REQUIRE(!result.summary.empty());
    REQUIRE(lastProgress == 1.0);
    converted = true;
  } catch (const ConversionError& error) {
    REQUIRE(error.kind() != ConversionError::Case::writeFailed);
    REQUIRE(!fs::exists(workshop.output()));
  }
  REQUIRE(std::ranges::equal(readFile(workshop.input()), content));
  if (!converted) return std::nullopt;
  return readFile(workshop.output());
}

}  // namespace corvana::fuzz
