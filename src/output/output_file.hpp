// The one output file of a conversion: how it comes into being, and what may be replaced.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "platform/ending.hpp"
#include "platform/folder.hpp"
#include "vocabulary/streams.hpp"

namespace corvana {

/// Where a conversion writes.
struct OutputTarget {
  const Folder& folder;  ///< stays open as long as the file is written
  /// Relative path of the folders inside that are still to be made; empty: none.
  std::filesystem::path missingFolders = {};
  std::string name;
  /// Whether a file that already has this name may be removed.
  bool replaceExisting = false;
  /// Whether the name is only given to a complete file that the disk has. Until then it keeps the
  /// file that it had.
  bool safe = false;
  /// The file that is being read; it is never removed, whatever name leads to it.
  FileIdentity input = {};
  /// Who may read and write the new file, under the user's mask: as with the input.
  unsigned permissions = 0666;
  /// What the complete file gets instead of the time at which it is written.
  std::optional<FileTimes> times = {};

  std::filesystem::path url() const { return folder.path() / missingFolders / name; }
};

/// Fails as the making of the file would, as far as that shows without touching anything: names
/// that cannot be made or replaced, folders that the user may not write to. A missing folder is
/// not looked at.
void checkOutput(const OutputTarget& target);

/// A new file that is written from start to end. One that is not closed keeps what was written;
/// a safe one is removed.
class OutputFile : public ByteSink {
 public:
  /// Makes missing folders, removes an existing file if that is allowed, and creates the file. A
  /// folder that cannot be made or a file that cannot be removed is a FileError; a file that cannot
  /// be created is ConversionError writeFailed.
  explicit OutputFile(const OutputTarget& target);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  ~OutputFile() override;

  void reserve(std::uint64_t size) override;

  /// Writes at the end; short pieces together with what comes next. Fails with writeFailed.
  void append(ByteView bytes) override;

  /// Writes what is left and closes. Fails with writeFailed, also when the system could not write
  /// what it was given before.
  void close();

  const OutputTarget& target() const { return target_; }
  /// The folder in which it is made.
  const Folder& folder() const { return madeFolder_ ? *madeFolder_ : target_.folder; }
  /// Of the file, while it is not closed.
  InodeIdentity identity() const { return identityOf(file_); }

  /// Why the closed file could not be given its times; 0 where it could, or was to have none.
  int timesError() const { return timesError_; }

 private:
  /// A step of writing, whose failure is writeFailed.
  template <typename Step>
  auto attempt(const Step& step) const;
  std::optional<FileDescriptor> create(const std::string& name);
  void createInPlace();
  void createHidden();
  void write(ByteView bytes);
  void putInPlace();
  bool mayReplace() const;
  [[noreturn]] void fail(int errorNumber) const;

  OutputTarget target_;
  std::optional<Folder> madeFolder_;
  std::string hiddenName_;  ///< of a safe file that is not yet complete
  std::optional<UnfinishedFile> unfinished_;
  FileDescriptor file_;
  ByteBuffer waiting_;  ///< short pieces that are not yet written
  std::uint64_t written_ = 0;
  std::uint64_t reserved_ = 0;
  std::uint64_t size_ = 0;  ///< announced
  int timesError_ = 0;
};

}  // namespace corvana
