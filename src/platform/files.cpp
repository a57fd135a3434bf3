#include "platform/files.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>
#include <utility>

#include "platform/mapped_guard.hpp"
#include "platform/texts.hpp"
#include "vocabulary/text_format.hpp"

namespace corvana {
namespace {

[[noreturn]] void failReading(int errorNumber, const std::filesystem::path& path) {
  throw FileError(errorNumber, localised("Cannot read '%1$@': %2$@"), path);
}

[[noreturn]] void failReplacing(int errorNumber, const std::filesystem::path& path) {
  throw FileError(errorNumber, localised("Cannot replace '%1$@': %2$@"), path);
}

[[noreturn]] void failCreating(int errorNumber, const std::filesystem::path& path) {
  throw FileError(errorNumber, localised("Cannot create '%1$@': %2$@"), path);
}

[[noreturn]] void failWriting(int errorNumber, const std::filesystem::path& path) {
  throw FileError(errorNumber, localised("Cannot write '%1$@': %2$@"), path);
}

/// A call that a signal interrupted before it did anything is made again.
template <typename Call>
auto uninterrupted(const Call& call) {
  auto result = call();
  while (result < 0 && errno == EINTR)
    result = call();
  return result;
}

}  // namespace

FileError::FileError(int errorNumber, const std::string& format, const std::filesystem::path& path)
    : FileError(errorNumber, format, path, std::generic_category().message(errorNumber)) {}

FileError::FileError(int errorNumber, const std::string& format, const std::filesystem::path& path,
                     const std::string& reason)
    : std::system_error(errorNumber, std::generic_category()),
      text_(fillText(format, {path.native(), reason})) {}

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
  std::swap(number_, other.number_);
  return *this;
}

FileDescriptor::~FileDescriptor() {
  if (number_ >= 0) ::close(number_);
}

int FileDescriptor::release() {
  return std::exchange(number_, -1);
}

InputFile::InputFile(const std::filesystem::path& path)
    : path_(path), file_(uninterrupted([&path] {
        // O_NONBLOCK: opening a pipe without a writer would otherwise wait for one.
        return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
      })) {
  if (file_.number() < 0) failReading(errno, path);
  struct stat status {};
  if (::fstat(file_.number(), &status) != 0) failReading(errno, path);
  if (S_ISDIR(status.st_mode)) failReading(EISDIR, path);
  if (!S_ISREG(status.st_mode))
    throw FileError(EINVAL, localised("Cannot read '%1$@': %2$@"), path,
                    localised("Not a regular file"));
  identity_ = {status.st_dev, status.st_ino};
  size_ = static_cast<std::size_t>(status.st_size);
  if (size_ == 0) return;
  void* mapped = ::mmap(nullptr, size_, PROT_READ, MAP_PRIVATE, file_.number(), 0);
  if (mapped == MAP_FAILED) failReading(errno, path);
  data_ = static_cast<const std::uint8_t*>(mapped);
}

InputFile::~InputFile() {
  if (data_ != nullptr) ::munmap(const_cast<std::uint8_t*>(data_), size_);
}

void InputFile::guardedRead(const std::function<void()>& reader) const {
  const MappedGuard guard({data_, size_}, lost_);
  try {
    reader();
  } catch (...) {
    checkStillThere();
    throw;
  }
  checkStillThere();
}

void InputFile::checkStillThere() const {
  if (lost_) failReading(EIO, path_);
  // The page in which the file now ends gives zeros behind that end, and no signal.
  struct stat status {};
  if (::fstat(file_.number(), &status) != 0) failReading(errno, path_);
  if (static_cast<std::size_t>(status.st_size) < size_) failReading(EIO, path_);
}

bool mayLeadTo(const std::filesystem::path& path, const FileIdentity& file) {
  struct stat status {};
  if (::stat(path.c_str(), &status) == 0) return file == FileIdentity{status.st_dev, status.st_ino};
  const bool leadsNowhere = errno == ENOENT || errno == ENOTDIR || errno == ELOOP;
  return !leadsNowhere;
}

bool nameExists(const std::filesystem::path& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0;
}

void createFolders(const std::filesystem::path& folder) {
  if (folder.empty()) return;
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) failCreating(error.value(), folder);
}

std::optional<FileDescriptor> createNewFile(const std::filesystem::path& path) {
  FileDescriptor file(uninterrupted(
      [&path] { return ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666); }));
  if (file.number() >= 0) return file;
  if (errno == EEXIST) return std::nullopt;
  failCreating(errno, path);
}

void removeFile(const std::filesystem::path& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) failReplacing(errno, path);
  if (S_ISDIR(status.st_mode)) failReplacing(EISDIR, path);
  if (!S_ISREG(status.st_mode) && !S_ISLNK(status.st_mode))
    throw FileError(EEXIST, localised("Cannot replace '%1$@': %2$@"), path,
                    localised("Not a regular file"));
  if (::unlink(path.c_str()) != 0) failReplacing(errno, path);
}

void writeAll(const FileDescriptor& file, std::span<const std::uint8_t> first,
              std::span<const std::uint8_t> second, const std::filesystem::path& path) {
  // The system's record takes pointers to what may change; it is only read here.
  const auto part = [](std::span<const std::uint8_t> bytes) {
    return iovec{const_cast<std::uint8_t*>(bytes.data()), bytes.size()};
  };
  while (!first.empty() || !second.empty()) {
    const std::array<iovec, 2> parts = {part(first), part(second)};
    const ssize_t written = uninterrupted([&file, &parts] {
      return ::writev(file.number(), parts.data(), static_cast<int>(parts.size()));
    });
    if (written < 0) failWriting(errno, path);
    if (written == 0) failWriting(EIO, path);
    const std::size_t ofFirst = std::min(static_cast<std::size_t>(written), first.size());
    first = first.subspan(ofFirst);
    second = second.subspan(static_cast<std::size_t>(written) - ofFirst);
  }
}

void reserveSpace(const FileDescriptor& file, std::uint64_t size) {
  // The system's own call: the C library's portable one writes to every block where the file
  // system cannot reserve.
  const off_t end = ::lseek(file.number(), 0, SEEK_CUR);
  if (end >= 0) ::fallocate(file.number(), FALLOC_FL_KEEP_SIZE, end, static_cast<off_t>(size));
}

void releaseSpace(const FileDescriptor& file) {
  const off_t end = ::lseek(file.number(), 0, SEEK_CUR);
  [[maybe_unused]] const int result = ::ftruncate(file.number(), end);
}

void closeFile(FileDescriptor file, const std::filesystem::path& path) {
  // The descriptor is gone even when close fails, EINTR included: it must not be closed twice.
  if (::close(file.release()) != 0 && errno != EINTR) failWriting(errno, path);
}

}  // namespace corvana
