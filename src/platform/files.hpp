// Single files: reading a whole input as mapped memory, and the few steps by which an output
// comes into being. Every failure is a FileError; a file URL is a std::filesystem::path.
#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <sys/types.h>
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

/// What tells two names of one file from two files.
struct FileIdentity {
  dev_t device = 0;
  ino_t inode = 0;
  bool operator==(const FileIdentity&) const = default;
};

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

/// A regular file, open for reading and mapped as a whole.
class InputFile {
 public:
  /// Opens and maps. Never waits: a pipe, device or folder is a FileError at once.
  explicit InputFile(const std::filesystem::path& path);
  InputFile(InputFile&&) = delete;
  InputFile& operator=(InputFile&&) = delete;
  ~InputFile();

  /// Hands the complete content (empty for an empty file) to `reader`, on the calling thread,
  /// and gives back what it returns. Other programs may cut the file short at any moment: where
  /// it has become shorter since it was opened, or its medium failed, a FileError takes the place
  /// of what the reader made of it, its own exceptions included. Reads do not nest, and the
  /// content is not to be touched outside of them.
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

  const FileIdentity& identity() const { return identity_; }

 private:
  void guardedRead(const std::function<void()>& reader) const;
  void checkStillThere() const;

  std::filesystem::path path_;
  FileDescriptor file_;
  const std::uint8_t* data_ = nullptr;
  std::size_t size_ = 0;
  FileIdentity identity_;
  mutable std::atomic<bool> lost_ = false;  ///< a part of the mapping no longer has a file
};

/// Whether `path` leads to this file (links followed). Also true where the system cannot tell:
/// who asks wants to spare the file.
bool mayLeadTo(const std::filesystem::path& path, const FileIdentity& file);

/// Whether the name is taken: by a file, a folder, or a link, even one that leads nowhere.
bool nameExists(const std::filesystem::path& path);

/// Makes `folder` with all missing intermediate folders. An existing folder is no error.
void createFolders(const std::filesystem::path& folder);

/// Makes a new empty file of this name, open for writing. Absent when the name is already
/// taken; never opens what is there.
std::optional<FileDescriptor> createNewFile(const std::filesystem::path& path);

/// Removes a file, or a symbolic link as such. A folder or special file stays and is an error.
void removeFile(const std::filesystem::path& path);

/// Writes all bytes, one part after the other, in one call where the system takes them at once.
void writeAll(const FileDescriptor& file, std::span<const std::uint8_t> first,
              std::span<const std::uint8_t> second, const std::filesystem::path& path);

/// Asks the system to have room on the disk ready for `size` more bytes, which makes writing them
/// cheaper. The size of the file stays as it is; where the system cannot, nothing happens.
void reserveSpace(const FileDescriptor& file, std::uint64_t size);

/// Gives back room that was reserved and not written to.
void releaseSpace(const FileDescriptor& file);

/// Closes and reports what the system could not write before.
void closeFile(FileDescriptor file, const std::filesystem::path& path);

}  // namespace corvana
