// A library to preload that makes one system call of a program go wrong, for files of one folder.
//
//   CORVANA_FAULT_BELOW   the start of the paths that are concerned
//   CORVANA_FAULT         CALL:NTH:ACTION, or CALL:NTH+:ACTION for this and every later one.
//
// CALL is folder (opening one), open (reading), create, fstat (of an input), stat and lstat (by
// name), list and readdir (the beginning and the steps of a folder's listing), mmap, mkdir, unlink,
// write, fsync, times (setting them), rename (to a free name), replace (rename over another file),
// or close (of a file that was created). ACTION is the name of an error (ENOSPC), or
//   short           write: only a part of the bytes
//   flip            write: the last bit is another one
//   untyped         readdir: the file system does not tell what an entry is
//   shrink          cut the last opened input to nothing before the call
//   steal, link:TO  create: another program makes a file, or a link to TO, of this name first
//
// A descriptor that is closed twice ends the program at once.
// When the program ends by itself, descriptors and mappings of these files that are left make it
// end with status 77, a fault that never happened with 78.

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <fstream>
#include <regex>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

enum class Kind : unsigned char { other, folder, input, output };

struct Fault {
  std::string below;
  std::string call;
  int nth = 0;
  bool repeats = false;
  std::string action;
  std::string lastInput;

  Fault() {
    if (const char* folder = std::getenv("CORVANA_FAULT_BELOW")) below = folder;
    const char* text = std::getenv("CORVANA_FAULT");
    if (text == nullptr) return;
    std::cmatch parts;
    if (!std::regex_match(text, parts, std::regex("([a-z]+):([0-9]+)(\\+?):(.+)"))) std::abort();
    call = parts[1];
    nth = std::stoi(parts[2]);
    repeats = parts[3].length() != 0;
    action = parts[4];
  }
};

// Never destroyed: the program may still close files after the destructors of this library.
Fault& fault() {
  static Fault& instance = *new Fault;
  return instance;
}

std::array<std::atomic<Kind>, 4096> kinds{};
std::atomic<int> calls = 0;
std::atomic<bool> happened = false;

int errorNumber(std::string_view name) {
  constexpr int maxErrors = 134;
  for (int number = 1; number < maxErrors; ++number) {
    const char* known = ::strerrorname_np(number);
    if (known != nullptr && name == known) return number;
  }
  std::abort();
}

/// By what name the system has a function. That for large files and late dates is another one on
/// 32-bit processors; the functions below take its place.
const char* symbolOf(std::string_view function) {
  constexpr const char* names[][2] = {
      {"fstat", "__fstat64_time64"}, {"fstatat", "__fstatat64_time64"},
      {"futimens", "__futimens64"},  {"mmap", "mmap64"},
      {"openat", "openat64"},        {"readdir", "readdir64"}};
  for (const auto& [usual, large] : names)
    if (function == usual && sizeof(long) == 4) return large;
  return function.data();
}

/// The system's own function.
#define NEXT(function) \
  reinterpret_cast<decltype(&(function))>(::dlsym(RTLD_NEXT, symbolOf(#function)))

/// The whole path of what a call names.
std::string pathOf(int folder, const char* name) {
  if (name[0] == '/') return name;
  const std::string link =
      folder == AT_FDCWD ? "/proc/self/cwd" : "/proc/self/fd/" + std::to_string(folder);
  std::array<char, 4096> path{};
  const ssize_t length = ::readlink(link.c_str(), path.data(), path.size());
  return std::string(path.data(), length < 0 ? 0 : static_cast<std::size_t>(length)) + "/" + name;
}

bool isConcerned(const std::string& path) {
  return !fault().below.empty() && path.starts_with(fault().below);
}

std::atomic<Kind>& kindOf(int file) {
  return kinds[static_cast<unsigned>(file) % kinds.size()];
}

/// Whether the call is to fail, with errno set; otherwise it goes on, perhaps to its ruin.
bool failsNow(std::string_view call, const std::string& path = {}) {
  if (call != fault().call) return false;
  const int number = ++calls;
  if (number != fault().nth && !(fault().repeats && number > fault().nth)) return false;
  happened = true;
  const std::string& action = fault().action;
  if (action == "shrink") {
    if (::truncate(fault().lastInput.c_str(), 0) != 0) std::abort();
  } else if (action == "steal") {
    std::ofstream(path) << "theirs";
  } else if (action.starts_with("link:")) {
    if (::symlink(action.c_str() + std::strlen("link:"), path.c_str()) != 0) std::abort();
  } else if (action != "short" && action != "flip" && action != "untyped") {
    errno = errorNumber(action);
    return true;
  }
  return false;
}

int openHere(int folder, const char* name, int flags, mode_t mode) {
  const bool creates = (flags & O_CREAT) != 0;
  const Kind kind = creates                                 ? Kind::output
                    : (flags & (O_PATH | O_DIRECTORY)) != 0 ? Kind::folder
                                                            : Kind::input;
  const std::string path = pathOf(folder, name);
  const bool concerned = isConcerned(path);
  const char* const call = creates ? "create" : kind == Kind::folder ? "folder" : "open";
  if (concerned && failsNow(call, path)) return -1;
  if (concerned && kind == Kind::input) fault().lastInput = path;
  const int file = NEXT(openat)(folder, name, flags, mode);
  if (concerned && file >= 0) kindOf(file) = kind;
  return file;
}

[[gnu::destructor]] void report() {
  if (fault().below.empty()) return;
  for (const auto& kind : kinds)
    if (kind != Kind::other) ::_exit(77);
  // Mappings are private and read-only: the system lists them by the path of their file.
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);)
    if (line.find(fault().below) != std::string::npos) ::_exit(77);
  if (!fault().call.empty() && !happened) ::_exit(78);
}

}  // namespace

extern "C" {

int openat(int folder, const char* name, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
  va_end(rest);
  return openHere(folder, name, flags, mode);
}

/// What hardened programs call.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
int __openat_2(int folder, const char* name, int flags) {
  return openHere(folder, name, flags, 0);
}

int fstatat(int folder, const char* name, struct stat* status, int flags) noexcept {
  const char* const call = (flags & AT_SYMLINK_NOFOLLOW) != 0 ? "lstat" : "stat";
  if (isConcerned(pathOf(folder, name)) && failsNow(call)) return -1;
  return NEXT(fstatat)(folder, name, status, flags);
}

int fstat(int file, struct stat* status) noexcept {
  if (kindOf(file) == Kind::input && failsNow("fstat")) return -1;
  return NEXT(fstat)(file, status);
}

DIR* fdopendir(int file) {
  if (isConcerned(pathOf(file, ".")) && failsNow("list")) return nullptr;
  return NEXT(fdopendir)(file);
}

dirent* readdir(DIR* listing) {
  const bool concerned = isConcerned(pathOf(::dirfd(listing), "."));
  if (concerned && failsNow("readdir")) return nullptr;
  dirent* const entry = NEXT(readdir)(listing);
  if (concerned && entry != nullptr && fault().action == "untyped") entry->d_type = DT_UNKNOWN;
  return entry;
}

void* mmap(void* address, std::size_t size, int protection, int flags, int file,
           off_t offset) noexcept {
  if (kindOf(file) == Kind::input && failsNow("mmap")) return MAP_FAILED;
  return NEXT(mmap)(address, size, protection, flags, file, offset);
}

int mkdirat(int folder, const char* name, mode_t mode) noexcept {
  if (isConcerned(pathOf(folder, name)) && failsNow("mkdir")) return -1;
  return NEXT(mkdirat)(folder, name, mode);
}

int unlinkat(int folder, const char* name, int flags) noexcept {
  if (isConcerned(pathOf(folder, name)) && failsNow("unlink")) return -1;
  return NEXT(unlinkat)(folder, name, flags);
}

int renameat2(int from, const char* name, int to, const char* newName, unsigned flags) noexcept {
  const std::string path = pathOf(to, newName);
  if (isConcerned(path) && failsNow("rename", path)) return -1;
  return NEXT(renameat2)(from, name, to, newName, flags);
}

int linkat(int from, const char* name, int to, const char* newName, int flags) noexcept {
  const std::string path = pathOf(to, newName);
  if (isConcerned(path) && failsNow("rename", path)) return -1;
  return NEXT(linkat)(from, name, to, newName, flags);
}

int renameat(int from, const char* name, int to, const char* newName) noexcept {
  if (isConcerned(pathOf(to, newName)) && failsNow("replace")) return -1;
  return NEXT(renameat)(from, name, to, newName);
}

int fsync(int file) {
  if (kindOf(file) != Kind::other && failsNow("fsync")) return -1;
  return NEXT(fsync)(file);
}

int futimens(int file, const timespec* times) noexcept {
  if (kindOf(file) != Kind::other && failsNow("times")) return -1;
  return NEXT(futimens)(file, times);
}

ssize_t writev(int file, const iovec* parts, int count) {
  if (kindOf(file) == Kind::output) {
    if (failsNow("write")) return -1;
    if (fault().action == "short") {
      const iovec& part = *std::find_if(parts, parts + count - 1,
                                        [](const iovec& some) { return some.iov_len != 0; });
      const std::size_t size = part.iov_len > 1 ? part.iov_len / 3 + 1 : part.iov_len;
      return NEXT(write)(file, part.iov_base, size);
    }
    if (fault().action == "flip" && calls == fault().nth) {
      std::string bytes;
      for (const iovec* part = parts; part != parts + count; ++part)
        bytes.append(static_cast<const char*>(part->iov_base), part->iov_len);
      bytes.back() = static_cast<char>(bytes.back() ^ 1);
      return NEXT(write)(file, bytes.data(), bytes.size());
    }
  }
  return NEXT(writev)(file, parts, count);
}

int close(int file) {
  const Kind kind = kindOf(file).exchange(Kind::other);
  const int result = NEXT(close)(file);
  if (result != 0 && errno == EBADF) std::abort();  // closed twice: it may be another's by now
  // The system closes a descriptor also where it reports an error.
  return kind == Kind::output && failsNow("close") ? -1 : result;
}

}  // extern "C"
