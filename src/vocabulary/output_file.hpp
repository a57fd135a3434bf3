// The one output file of a conversion: how it comes into being, and what may be replaced.
#pragma once

#include <cstdint>
#include <filesystem>

#include "platform/files.hpp"
#include "vocabulary/bytes.hpp"

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
class OutputFile {
 public:
  /// Makes missing folders, removes an existing file if that is allowed, and creates the file.
  /// `header` is written together with what is appended first. A folder that cannot be made or a
  /// file that cannot be removed is a FileError; a file that cannot be created is ConversionError
  /// writeFailed.
  OutputFile(const OutputTarget& target, ByteBuffer header);

  OutputFile(OutputFile&&) = default;
  OutputFile& operator=(OutputFile&&) = delete;
  /// Leaves a file that was not closed as long as it has been written.
  ~OutputFile();

  /// Prepares for `size` more bytes. Never fails.
  void expect(std::uint64_t size);

  /// Writes at the end. Fails with writeFailed.
  void append(ByteView bytes);

  /// Closes. Fails with writeFailed when the system could not write what it was given before.
  void close();

 private:
  std::filesystem::path path_;
  FileDescriptor file_;
  ByteBuffer header_;  ///< not yet written
};

}  // namespace corvana
