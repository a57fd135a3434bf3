#include "platform/folder.hpp"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "platform/texts.hpp"

namespace corvana {
namespace {

// To look up names in a folder takes no right to list it, where the system can be told so.
#if CORVANA_HAS_O_PATH
constexpr int openToSearch = O_PATH;
#elif defined(O_SEARCH)
constexpr int openToSearch = O_SEARCH;
#else
constexpr int openToSearch = O_RDONLY;
#endif
constexpr int openFlags = openToSearch | O_DIRECTORY | O_CLOEXEC;

[[noreturn]] void fail(int errorNumber) {
  throw std::system_error(errorNumber, std::generic_category());
}

FileDescriptor openChecked(int folder, const char* name, int flags) {
  FileDescriptor descriptor(uninterrupted([&] { return ::openat(folder, name, flags); }));
  if (descriptor.number() < 0) fail(errno);
  return descriptor;
}

/// A link that is not to be followed.
class ForeignLink : public std::system_error {
 public:
  ForeignLink() : std::system_error(ELOOP, std::generic_category()) {}
};

/// Where a link points. An empty name stands for a link that is open itself.
std::string targetOf(int folder, const char* name) {
  std::string target(PATH_MAX, '\0');
  const ssize_t length = ::readlinkat(folder, name, target.data(), target.size());
  if (length < 0) fail(errno);
  target.resize(static_cast<std::size_t>(length));
  return target;
}

void checkOwner(const struct stat& link) {
  if (link.st_uid != ::geteuid() && link.st_uid != 0) throw ForeignLink();
}

#if !CORVANA_HAS_O_PATH

struct stat statusOf(int folder, const char* name) {
  struct stat status {};
  if (::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0) fail(errno);
  return status;
}

/// Whether it is one link that nobody has touched, or taken away and put back, in between.
bool isUnchanged(const struct stat& before, const struct stat& after) {
  return before.st_dev == after.st_dev && before.st_ino == after.st_ino &&
         before.st_ctim.tv_sec == after.st_ctim.tv_sec &&
         before.st_ctim.tv_nsec == after.st_ctim.tv_nsec;
}

#endif

bool mayBeOneFile(const FileIdentity& a, const FileIdentity& b) {
  if (a.device != b.device) return false;
  if (a.inode == b.inode) return true;
  return a.size == b.size && a.modified == b.modified && foldedName(a.name) == foldedName(b.name);
}

}  // namespace

Folder::Folder(const std::filesystem::path& path)
    : Folder(openChecked(AT_FDCWD, path.empty() ? "." : path.c_str(), openFlags), path) {}

Folder::Folder(FileDescriptor descriptor, std::filesystem::path path)
    : descriptor_(std::move(descriptor)), path_(std::move(path)) {}

Folder Folder::open(const std::string& name) const {
#if CORVANA_HAS_O_PATH
  FileDescriptor item =
      openChecked(descriptor_.number(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC);
  struct stat status {};
  if (::fstat(item.number(), &status) != 0) fail(errno);
  if (S_ISDIR(status.st_mode)) return {std::move(item), path_ / name};
  if (!S_ISLNK(status.st_mode)) fail(ENOTDIR);
  checkOwner(status);
  // What the open link says, not what now has its name.
  const std::string target = targetOf(item.number(), "");
#else
  FileDescriptor item(
      uninterrupted([&] { return ::openat(number(), name.c_str(), openFlags | O_NOFOLLOW); }));
  const int errorNumber = errno;
  if (item.number() >= 0) return {std::move(item), path_ / name};
  const struct stat status = statusOf(number(), name.c_str());
  if (!S_ISLNK(status.st_mode)) fail(S_ISDIR(status.st_mode) ? errorNumber : ENOTDIR);
  checkOwner(status);
  const std::string target = targetOf(number(), name.c_str());
  if (!isUnchanged(status, statusOf(number(), name.c_str()))) fail(ELOOP);
#endif
  return {openChecked(number(), target.c_str(), openFlags), path_ / name};
}

Folder Folder::make(const std::string& name) const {
  const int result = ::mkdirat(descriptor_.number(), name.c_str(), 0777);
  if (result != 0 && errno != EEXIST) failCreating(errno, path_ / name);
  return openMade(name);
}

Folder Folder::openMade(const std::string& name) const {
  try {
    return open(name);
  } catch (const std::system_error& error) {
    // Taken all the same: by a link that leads nowhere.
    if (error.code() == std::errc::no_such_file_or_directory) failCreating(EEXIST, path_ / name);
    throw FileError(error.code().value(), localised("Cannot create '%1$@': %2$@"), path_ / name,
                    folderReason(error));
  }
}

void Folder::rehearseMaking(const std::string& name) const {
  if (nameExists(name)) {
    openMade(name);
  } else if (const int errorNumber = obstacleToMaking(name); errorNumber != 0) {
    failCreating(errorNumber, path_ / name);
  }
}

int Folder::obstacleToMaking(const std::string& name) const {
  struct stat status {};
  if (::fstatat(number(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0 && errno != ENOENT)
    return errno;
  return ::faccessat(number(), ".", W_OK | X_OK, AT_EACCESS) == 0 ? 0 : errno;
}

bool Folder::nameExists(const std::string& name) const {
  struct stat status {};
  return ::fstatat(number(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

bool Folder::mayLeadTo(const std::string& name, const FileIdentity& file) const {
  struct stat status {};
  if (::fstatat(number(), name.c_str(), &status, 0) == 0)
    return mayBeOneFile(identityOf(status, name), file);
  const bool leadsNowhere = errno == ENOENT || errno == ENOTDIR || errno == ELOOP;
  return !leadsNowhere;
}

InodeIdentity Folder::identity() const {
  if (!identity_) identity_ = identityOf(descriptor_);
  return *identity_;
}

bool Folder::leadsTo(const std::string& name, const FileIdentity& file) const {
  struct stat status {};
  if (::fstatat(number(), name.c_str(), &status, 0) != 0) return false;
  const FileIdentity now = identityOf(status, name);
  return now.device == file.device && now.inode == file.inode && now.size == file.size &&
         now.modified == file.modified;
}

std::optional<FileDescriptor> Folder::createNewFile(const std::string& name,
                                                    unsigned permissions) const {
  FileDescriptor file(uninterrupted([&] {
    return ::openat(number(), name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, permissions);
  }));
  if (file.number() >= 0) return file;
  if (errno == EEXIST) return std::nullopt;
  failCreating(errno, path_ / name);
}

void Folder::checkReplaceable(const std::string& name) const {
  struct stat status {};
  if (::fstatat(number(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
    failReplacing(errno, path_ / name);
  if (S_ISDIR(status.st_mode)) failReplacing(EISDIR, path_ / name);
  if (!S_ISREG(status.st_mode) && !S_ISLNK(status.st_mode))
    throw FileError(EEXIST, localised("Cannot replace '%1$@': %2$@"), path_ / name,
                    localised("Not a regular file"));
}

void Folder::removeFile(const std::string& name) const {
  checkReplaceable(name);
  if (::unlinkat(number(), name.c_str(), 0) != 0) failReplacing(errno, path_ / name);
}

void Folder::discard(const std::string& name) const {
  ::unlinkat(number(), name.c_str(), 0);
}

bool Folder::moveToFreeName(const std::string& from, const std::string& to) const {
#if CORVANA_HAS_RENAMEAT2
  if (::renameat2(number(), from.c_str(), number(), to.c_str(), RENAME_NOREPLACE) == 0) return true;
  if (errno == EEXIST) return false;
  // Not every file system can do that in one step.
  if (errno != EINVAL && errno != ENOSYS) failCreating(errno, path_ / to);
#endif
  // A second name is refused in the same way.
  if (::linkat(number(), from.c_str(), number(), to.c_str(), 0) != 0) {
    if (errno == EEXIST) return false;
    failCreating(errno, path_ / to);
  }
  ::unlinkat(number(), from.c_str(), 0);
  return true;
}

void Folder::moveOver(const std::string& from, const std::string& to) const {
  checkReplaceable(to);
  if (::renameat(number(), from.c_str(), number(), to.c_str()) != 0)
    failReplacing(errno, path_ / to);
}

void Folder::sync() const {
  const FileDescriptor folder(::openat(number(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder.number() < 0) failWriting(errno, path_);
  syncFile(folder, path_);
}

Folder openFoundFolder(std::string_view path, std::size_t namedLength) {
  Folder folder{std::filesystem::path(path.substr(0, namedLength))};
  std::string_view rest = path.substr(std::min(namedLength, path.size()));
  while (!rest.empty()) {
    const std::size_t length = std::min(rest.find('/'), rest.size());
    if (length > 0) folder = folder.open(std::string(rest.substr(0, length)));
    rest.remove_prefix(std::min(length + 1, rest.size()));
  }
  return folder;
}

std::optional<Folder> openFolders(const Folder& folder, std::filesystem::path& path) {
  std::optional<Folder> innermost;
  std::filesystem::path rest;
  bool isOpen = true;
  for (const std::filesystem::path& name : path) {
    try {
      if (isOpen) innermost = (innermost ? *innermost : folder).open(name.native());
    } catch (const std::system_error&) {
      isOpen = false;  // who makes it learns why
    }
    if (!isOpen) rest /= name;
  }
  path = std::move(rest);
  return innermost;
}

Folder makeFolders(const Folder& folder, const std::filesystem::path& path) {
  std::optional<Folder> innermost;
  for (const std::filesystem::path& name : path)
    innermost = (innermost ? *innermost : folder).make(name.native());
  return std::move(*innermost);
}

std::string folderReason(const std::system_error& error) {
  if (dynamic_cast<const ForeignLink*>(&error) != nullptr)
    return localised("A link that belongs to another user");
  return error.code().message();
}

}  // namespace corvana
