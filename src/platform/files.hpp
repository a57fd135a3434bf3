// Single files: reading a whole input as mapped memory, and the few steps by which an output
// comes into being. Every failure is a FileError; a file URL is a std::filesystem::path.
#pragma once

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <type_traits>

namespace corvana {

/// A failure of the file system. Its text says what failed, the path, and the system's reason.
class FileError : public std::system_error {
 public:
  /// `format` is a localised text with places for the path and the reason.
  FileError(int errorNumber, const std::string& format, const std::filesystem::path& path);
  /// For a reason that is not the system's.
  FileError(int errorNumber, const std::string& format, const std::filesystem::path& path,
            const std::string& reason);

  const char* what() const noexcept override { return text_.c_str(); }

 private:
  std::string text_;
};

// The failures of a conversion's steps, each with its text.
[[noreturn]] void failReading(int errorNumber, const std::filesystem::path& path);
[[noreturn]] void failCreating(int errorNumber, const std::filesystem::path& path);
[[noreturn]] void failReplacing(int errorNumber, const std::filesystem::path& path);
[[noreturn]] void failWriting(int errorNumber, const std::filesystem::path& path);

/// A call of the system that a signal interrupted before it did anything is made again.
template <typename Call>
auto uninterrupted(const Call& call) {
  auto result = call();
  while (result < 0 && errno == EINTR)
    result = call();
  return result;
}

/// What tells two names of one file from two files. Some file systems give a file a new inode
/// number now and then, and take names that differ in case for one; the rest makes up for that.
struct FileIdentity {
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = 0;             ///< bytes
  std::int64_t modified = 0;  ///< nanoseconds since 1970
  std::string name;           ///< without its folder
};

/// `status` is what the system says of the file.
FileIdentity identityOf(const struct stat& status, const std::string& name);

/// Of the file that `path` leads to; absent where there is none.
std::optional<FileIdentity> identityOf(const std::filesystem::path& path);

/// When a file was last read and last written to.
using FileTimes = std::array<timespec, 2>;

/// What reading a file does to its access time.
enum class AccessTime {
  changes,
  stays,  ///< where the system allows it: with files of the user's own, for the most part
};

/// What is left of a name when case and everything but ASCII is taken from it: equal for all names
/// that any file system takes for one.
std::string foldedName(std::string_view name);

class Folder;

/// Owns an open file descriptor.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int number) : number_(number) {}
  FileDescriptor(FileDescriptor&& other) noexcept : number_(other.release()) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept;
  ~FileDescriptor();

  int number() const { return number_; }
  /// Gives up ownership.
  int release();

 private:
  int number_ = -1;
};

/// What tells a folder or file from one that has taken its place.
struct InodeIdentity {
  dev_t device = 0;
  ino_t inode = 0;
  bool operator==(const InodeIdentity&) const = default;
};

/// Of an open folder or file.
InodeIdentity identityOf(const FileDescriptor& descriptor);

/// A file without a name and a disk, open for reading: `head`, `gap` zeros, which take no room, and
/// `tail`. Fails with a FileError that names `path`.
FileDescriptor makeMemoryFile(std::span<const std::uint8_t> head, std::uint64_t gap,
                              std::span<const std::uint8_t> tail,
                              const std::filesystem::path& path);

/// A regular file, open for reading: mapped as a whole, or read where it is small.
class InputFile {
 public:
  /// Opens and maps or reads the file `name` of a folder. Never waits for a writer: a pipe, device
  /// or folder is a FileError at once. `path` is for messages.
  InputFile(const Folder& folder, const std::string& name, const std::filesystem::path& path,
            AccessTime accessTime = AccessTime::changes);
  /// Maps or reads a file that is open. `name` is its name in its folder.
  InputFile(FileDescriptor file, const std::string& name, const std::filesystem::path& path);
  InputFile(InputFile&&) = delete;
  InputFile& operator=(InputFile&&) = delete;
  ~InputFile();

  /// Hands the complete content (empty for an empty file) to `reader`, on the calling thread,
  /// and gives back what it returns. Other programs may cut the file short at any moment: where
  /// it has become shorter since it was opened, or its medium failed, a FileError takes the place
  /// of what the reader made of it, its own exceptions included. Reads of several files may nest.
  /// The content is not to be touched outside of them.
  template <typename Reader>
  auto read(const Reader& reader) const {
    const std::span<const std::uint8_t> content(data_, size_);
    using Result = std::invoke_result_t<Reader, std::span<const std::uint8_t>>;
    if constexpr (std::is_void_v<Result>) {
      guardedRead([&] { reader(content); });
    } else {
      Result result;
      guardedRead([&] { result = reader(content); });
      return result;
    }
  }

  /// Takes the content from `begin` to about `end` out of the program's memory, where it is enough
  /// to be worth it; it can be read again. `begin` is 0 or what the call before returned: where the
  /// next one is to begin.
  std::uint64_t giveBack(std::uint64_t begin, std::uint64_t end) const;

  const FileIdentity& identity() const { return identity_; }
  /// As they were when it was opened.
  const FileTimes& times() const { return times_; }
  /// Gives it other ones. 0, or the system's error number.
  int setTimes(const FileTimes& times) const;
  /// Who may read and write it (the bits of 0666).
  unsigned permissions() const { return permissions_; }

 private:
  void guardedRead(const std::function<void()>& reader) const;
  void checkStillThere() const;
  void readWhole();

  std::filesystem::path path_;
  FileDescriptor file_;
  const std::uint8_t* data_ = nullptr;
  std::size_t size_ = 0;
  std::unique_ptr<std::uint8_t[]> copy_;  ///< of a small file; null: it is mapped
  FileIdentity identity_;
  FileTimes times_{};
  unsigned permissions_ = 0;
  mutable std::atomic<bool> lost_ = false;  ///< a part of the mapping no longer has a file
};

/// Writes all bytes, one part after the other, in one call where the system takes them at once.
void writeAll(const FileDescriptor& file, std::span<const std::uint8_t> first,
              std::span<const std::uint8_t> second, const std::filesystem::path& path);

/// Asks the system to have room on the disk ready for the `size` bytes from `offset` on, which
/// makes writing them cheaper. The size of the file stays as it is; where the system cannot,
/// nothing happens.
void reserveSpace(const FileDescriptor& file, std::uint64_t offset, std::uint64_t size);

/// Gives back room that was reserved and not written to.
void releaseSpace(const FileDescriptor& file);

/// Gives an open file the times of another one. 0, or the system's error number.
int setTimes(const FileDescriptor& file, const FileTimes& times);

/// Waits until the disk has what was written.
void syncFile(const FileDescriptor& file, const std::filesystem::path& path);

/// Closes and reports what the system could not write before.
void closeFile(FileDescriptor file, const std::filesystem::path& path);

}  // namespace corvana
