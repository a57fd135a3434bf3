// The one output file of a conversion: how it comes into being, and what may be replaced.
#pragma once

#include <cstdint>
#include <filesystem>

#include "platform/files.hpp"
#include "vocabulary/streams.hpp"

namespace corvana {

/// Where a conversion writes.
struct OutputTarget {
  std::filesystem::path url;
  /// Whether a file that already has this name may be removed.
  bool replaceExisting = false;
  /// The file that is being read; it is never removed, whatever name leads to it.
  FileIdentity input;
};

/// A new file that is written from start to end. A partly written file stays on disk.
class OutputFile : public ByteSink {
 public:
  /// Makes missing folders, removes an existing file if that is allowed, and creates the file. A
  /// folder that cannot be made or a file that cannot be removed is a FileError; a file that
  /// cannot be created is ConversionError writeFailed.
  explicit OutputFile(const OutputTarget& target);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  /// Leaves a file that was not closed as long as it has been written.
  ~OutputFile() override;

  void reserve(std::uint64_t size) override;

  /// Writes at the end; short pieces together with what comes next. Fails with writeFailed.
  void append(ByteView bytes) override;

  /// Writes what is left and closes. Fails with writeFailed, also when the system could not write
  /// what it was given before.
  void close();

 private:
  void write(ByteView bytes);

  std::filesystem::path path_;
  FileDescriptor file_;
  ByteBuffer waiting_;  ///< short pieces that are not yet written
};

}  // namespace corvana
