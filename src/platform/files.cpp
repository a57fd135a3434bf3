#include "platform/files.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <limits>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>
#include <utility>

#include "platform/folder.hpp"
#include "platform/mapped_guard.hpp"
#include "platform/texts.hpp"
#include "vocabulary/text_format.hpp"

namespace corvana {

void failReading(int errorNumber, const std::filesystem::path& path) {
  throw FileError(errorNumber, localised("Cannot read '%1$@': %2$@"), path);
}

void failCreating(int errorNumber, const std::filesystem::path& path) {
  throw FileError(errorNumber, localised("Cannot create '%1$@': %2$@"), path);
}

void failReplacing(int errorNumber, const std::filesystem::path& path) {
  throw FileError(errorNumber, localised("Cannot replace '%1$@': %2$@"), path);
}

void failWriting(int errorNumber, const std::filesystem::path& path) {
  throw FileError(errorNumber, localised("Cannot write '%1$@': %2$@"), path);
}

FileIdentity identityOf(const struct stat& status, const std::string& name) {
  constexpr std::int64_t nanoseconds = 1'000'000'000;
  return {status.st_dev, status.st_ino, status.st_size,
          status.st_mtim.tv_sec * nanoseconds + status.st_mtim.tv_nsec, name};
}

std::optional<FileIdentity> identityOf(const std::filesystem::path& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return std::nullopt;
  return identityOf(status, path.filename().native());
}

std::string foldedName(std::string_view name) {
  std::string folded(name.size(), '\0');
  std::size_t size = 0;
  for (const char c : name)
    if (static_cast<unsigned char>(c) < 0x80)
      folded[size++] = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  folded.resize(size);
  return folded;
}

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

InodeIdentity identityOf(const FileDescriptor& descriptor) {
  struct stat status {};
  if (::fstat(descriptor.number(), &status) != 0) return {};
  return {status.st_dev, status.st_ino};
}

namespace {

/// A file that nobody else can open and that is gone when it is closed.
FileDescriptor makeNamelessFile() {
#if CORVANA_HAS_MEMFD
  return FileDescriptor(::memfd_create("", MFD_CLOEXEC));
#else
  std::error_code error;
  std::string name = (std::filesystem::temp_directory_path(error) / "corvana-XXXXXX").native();
  FileDescriptor file(::mkstemp(name.data()));
  if (file.number() < 0) return file;
  ::unlink(name.c_str());
  ::fcntl(file.number(), F_SETFD, FD_CLOEXEC);
  return file;
#endif
}

}  // namespace

FileDescriptor makeMemoryFile(std::span<const std::uint8_t> head, std::uint64_t gap,
                              std::span<const std::uint8_t> tail,
                              const std::filesystem::path& path) {
  FileDescriptor file = makeNamelessFile();
  if (file.number() < 0) failReading(errno, path);
  if (::ftruncate(file.number(), static_cast<off_t>(head.size() + gap + tail.size())) != 0)
    failReading(errno, path);
  writeAll(file, head, {}, path);
  ::lseek(file.number(), static_cast<off_t>(gap), SEEK_CUR);
  writeAll(file, tail, {}, path);
  return file;
}

namespace {

/// Bytes. Short files do without giving back.
constexpr std::uint64_t minGivenBack = 1 << 20;

/// Flag with which reading does not count as access; 0 where the system has none.
#if CORVANA_HAS_NOATIME
constexpr int quietly = O_NOATIME;
#else
constexpr int quietly = 0;
#endif

/// The descriptor, or -1 with the reason in errno.
int openForReading(const Folder& folder, const std::string& name, AccessTime accessTime) {
  const auto tryToOpen = [&](int flags) {
    return uninterrupted([&] {
      return ::openat(folder.number(), name.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | flags);
    });
  };
  const auto open = [&](int flags) {
    if (accessTime == AccessTime::changes || quietly == 0) return tryToOpen(flags);
    const int descriptor = tryToOpen(flags | quietly);
    return descriptor >= 0 || errno != EPERM ? descriptor : tryToOpen(flags);
  };
  // Opening a pipe without a writer would otherwise wait for one.
  const int descriptor = open(O_NONBLOCK);
  if (descriptor >= 0 || errno != EAGAIN) return descriptor;
  struct stat status {};
  if (::fstatat(folder.number(), name.c_str(), &status, 0) != 0 || !S_ISREG(status.st_mode)) {
    errno = EAGAIN;
    return -1;
  }
  // Another program holds a lease on the file and is being asked to give it back.
  return open(0);
}

FileDescriptor openForReading(const Folder& folder, const std::string& name,
                              const std::filesystem::path& path, AccessTime accessTime) {
  FileDescriptor file(openForReading(folder, name, accessTime));
  if (file.number() < 0) failReading(errno, path);
  return file;
}

/// Bytes. What is not larger is read instead of mapped: that costs less, and where several threads
/// convert, all of them stop for a moment whenever one gives a mapping back.
constexpr std::size_t maxReadSize = 128 << 10;

/// Room for the next file that is read, from the last one.
thread_local std::unique_ptr<std::uint8_t[]> spareRoom;

}  // namespace

InputFile::InputFile(const Folder& folder, const std::string& name,
                     const std::filesystem::path& path, AccessTime accessTime)
    : InputFile(openForReading(folder, name, path, accessTime), name, path) {}

InputFile::InputFile(FileDescriptor file, const std::string& name,
                     const std::filesystem::path& path)
    : path_(path), file_(std::move(file)) {
  struct stat status {};
  if (::fstat(file_.number(), &status) != 0) failReading(errno, path);
  if (S_ISDIR(status.st_mode)) failReading(EISDIR, path);
  if (!S_ISREG(status.st_mode))
    throw FileError(EINVAL, localised("Cannot read '%1$@': %2$@"), path,
                    localised("Not a regular file"));
  identity_ = identityOf(status, name);
  times_ = {status.st_atim, status.st_mtim};
  permissions_ = status.st_mode & 0666U;
  if (static_cast<std::uint64_t>(status.st_size) > std::numeric_limits<std::size_t>::max())
    failReading(EFBIG, path);
  size_ = static_cast<std::size_t>(status.st_size);
  if (size_ == 0) return;
  if (size_ <= maxReadSize) {
    readWhole();
    return;
  }
  void* mapped = ::mmap(nullptr, size_, PROT_READ, MAP_PRIVATE, file_.number(), 0);
  if (mapped == MAP_FAILED) failReading(errno, path);
  data_ = static_cast<const std::uint8_t*>(mapped);
}

void InputFile::readWhole() {
  copy_ = spareRoom ? std::move(spareRoom)
                    : std::unique_ptr<std::uint8_t[]>(new std::uint8_t[maxReadSize]);
  for (std::size_t done = 0; done < size_;) {
    const ssize_t got = uninterrupted([&] {
      return ::pread(file_.number(), copy_.get() + done, size_ - done, static_cast<off_t>(done));
    });
    if (got < 0) failReading(errno, path_);
    if (got == 0) failReading(EIO, path_);  // it has become shorter
    done += static_cast<std::size_t>(got);
  }
  data_ = copy_.get();
}

InputFile::~InputFile() {
  if (copy_) {
    spareRoom = std::move(copy_);
  } else if (data_ != nullptr) {
    ::munmap(const_cast<std::uint8_t*>(data_), size_);
  }
}

int InputFile::setTimes(const FileTimes& times) const {
  return corvana::setTimes(file_, times);
}

std::uint64_t InputFile::giveBack(std::uint64_t begin, std::uint64_t end) const {
  static const auto page = static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
  if (end < begin + minGivenBack) return begin;
  end -= end % page;
  // POSIX's own call may do nothing, and with the GNU C library does. Pages that stand for lost
  // ones may go as well: those in their place are zeros again.
#if CORVANA_HAS_MADVISE
  ::madvise(const_cast<std::uint8_t*>(data_ + begin), static_cast<std::size_t>(end - begin),
            MADV_DONTNEED);
#else
  ::posix_madvise(const_cast<std::uint8_t*>(data_ + begin), static_cast<std::size_t>(end - begin),
                  POSIX_MADV_DONTNEED);
#endif
  return end;
}

void InputFile::guardedRead(const std::function<void()>& reader) const {
  if (copy_) return reader();
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
  if (static_cast<std::uint64_t>(status.st_size) < size_) failReading(EIO, path_);
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

void reserveSpace([[maybe_unused]] const FileDescriptor& file,
                  [[maybe_unused]] std::uint64_t offset, [[maybe_unused]] std::uint64_t size) {
  // The system's own call or none: the portable one makes the file longer, and the C library's
  // writes to every block where the file system cannot reserve.
#if CORVANA_HAS_FALLOCATE
  ::fallocate(file.number(), FALLOC_FL_KEEP_SIZE, static_cast<off_t>(offset),
              static_cast<off_t>(size));
#endif
}

void releaseSpace(const FileDescriptor& file) {
  const off_t end = ::lseek(file.number(), 0, SEEK_CUR);
  [[maybe_unused]] const int result = ::ftruncate(file.number(), end);
}

int setTimes(const FileDescriptor& file, const FileTimes& times) {
  return ::futimens(file.number(), times.data()) == 0 ? 0 : errno;
}

void syncFile(const FileDescriptor& file, const std::filesystem::path& path) {
  if (uninterrupted([&file] { return ::fsync(file.number()); }) != 0) failWriting(errno, path);
}

void closeFile(FileDescriptor file, const std::filesystem::path& path) {
  // The descriptor is gone even when close fails, EINTR included: it must not be closed twice.
  if (::close(file.release()) != 0 && errno != EINTR) failWriting(errno, path);
}

}  // namespace corvana
