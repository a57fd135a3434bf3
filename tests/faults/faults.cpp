// A library to preload that makes one system call of a program go wrong, for files of one folder.
//
//   CORVANA_FAULT_BELOW   the start of the paths that are concerned
//   CORVANA_FAULT         CALL:NTH:ACTION, or CALL:NTH+:ACTION for this and every later one.
//
// CALL is open (reading), create (opening with O_CREAT), fstat, stat, lstat, mmap, mkdir, unlink,
// write, or close (of a file that was created). ACTION is the name of an error (ENOSPC), or
//   short           write: only a part of the bytes
//   shrink          cut the last opened input to nothing before the call
//   steal, link:TO  create: another program makes a file, or a link to TO, of this name first
//
// When the program ends by itself, descriptors and mappings of these files that are left make it
// end with status 77, a fault that never happened with 78.

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

enum class Kind : unsigned char { other, input, output };

struct Fault {
  std::string below;
  std::string call;
  int nth = 0;
  bool repeats = false;
  std::string action;

  Fault() {
    if (const char* folder = std::getenv("CORVANA_FAULT_BELOW")) below = folder;
    const char* text = std::getenv("CORVANA_FAULT");
    if (text == nullptr) return;
    const std::string_view fault = text;
    const std::size_t first = fault.find(':');
    const std::size_t second = fault.find(':', first + 1);
    call = fault.substr(0, first);
    nth = std::atoi(fault.substr(first + 1).data());
    repeats = fault[second - 1] == '+';
    action = fault.substr(second + 1);
  }
};

// Never destroyed: the program may still close files after the destructors of this library.
const Fault& fault() {
  static const Fault& instance = *new Fault;
  return instance;
}

std::string& lastInput() {
  static std::string& path = *new std::string;
  return path;
}

std::array<std::atomic<Kind>, 4096> kinds{};
std::atomic<int> calls = 0;
std::atomic<int> mappings = 0;
std::atomic<bool> happened = false;

int errorNumber(std::string_view name) {
  constexpr int mostErrors = 134;
  for (int number = 1; number < mostErrors; ++number) {
    const char* known = ::strerrorname_np(number);
    if (known != nullptr && name == known) return number;
  }
  std::abort();
}

template <typename Function>
Function next(const char* name) {
  return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

bool isConcerned(const char* path) {
  return !fault().below.empty() && std::string_view(path).starts_with(fault().below);
}

Kind kindOf(int file) {
  return file >= 0 && static_cast<std::size_t>(file) < kinds.size()
             ? kinds[static_cast<std::size_t>(file)].load()
             : Kind::other;
}

void makeAsAnotherProgram(const char* path) {
  constexpr std::string_view link = "link:";
  if (fault().action.starts_with(link)) {
    if (::symlink(fault().action.c_str() + link.size(), path) != 0) std::abort();
    return;
  }
  const int file =
      next<int (*)(const char*, int, ...)>("open")(path, O_WRONLY | O_CREAT | O_EXCL, 0600);
  if (file < 0 || next<ssize_t (*)(int, const void*, std::size_t)>("write")(file, "theirs", 6) != 6)
    std::abort();
  next<int (*)(int)>("close")(file);
}

/// Whether the call is to fail, with errno set; otherwise it goes on, perhaps to its ruin.
bool failsNow(std::string_view call, const char* path = nullptr) {
  if (call != fault().call) return false;
  const int number = ++calls;
  if (number != fault().nth && !(fault().repeats && number > fault().nth)) return false;
  happened = true;
  const std::string& action = fault().action;
  if (action == "shrink") {
    if (::truncate(lastInput().c_str(), 0) != 0) std::abort();
  } else if (action == "steal" || action.starts_with("link:")) {
    makeAsAnotherProgram(path);
  } else if (action != "short") {
    errno = errorNumber(action);
    return true;
  }
  return false;
}

int openConcerned(const char* name, const char* path, int flags, mode_t mode) {
  const bool creates = (flags & O_CREAT) != 0;
  if (failsNow(creates ? "create" : "open", path)) return -1;
  if (!creates) lastInput() = path;
  const int file = next<int (*)(const char*, int, ...)>(name)(path, flags, mode);
  if (file >= 0) kinds[static_cast<std::size_t>(file)] = creates ? Kind::output : Kind::input;
  return file;
}

int openAny(const char* name, const char* path, int flags, va_list rest) {
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
  if (isConcerned(path)) return openConcerned(name, path, flags, mode);
  return next<int (*)(const char*, int, ...)>(name)(path, flags, mode);
}

template <typename Status>
int statusOfPath(const char* call, const char* name, const char* path, Status* status) {
  if (isConcerned(path) && failsNow(call)) return -1;
  return next<int (*)(const char*, Status*)>(name)(path, status);
}

template <typename Status>
int statusOfFile(const char* name, int file, Status* status) {
  if (kindOf(file) != Kind::other && failsNow("fstat")) return -1;
  return next<int (*)(int, Status*)>(name)(file, status);
}

template <typename Offset>
void* map(const char* name, void* address, std::size_t size, int protection, int flags, int file,
          Offset offset) {
  const bool concerned = kindOf(file) != Kind::other;
  if (concerned && failsNow("mmap")) return MAP_FAILED;
  void* mapped = next<void* (*)(void*, std::size_t, int, int, int, Offset)>(name)(
      address, size, protection, flags, file, offset);
  if (concerned && mapped != MAP_FAILED) ++mappings;
  return mapped;
}

// Mappings are private and read-only: the system lists them by the path of their file.
int mappingsLeft() {
  int count = 0;
  std::array<char, 8192> line{};
  std::FILE* maps = std::fopen("/proc/self/maps", "r");
  while (maps != nullptr && std::fgets(line.data(), line.size(), maps) != nullptr)
    if (std::strstr(line.data(), fault().below.c_str()) != nullptr) ++count;
  if (maps != nullptr) std::fclose(maps);
  return count;
}

[[gnu::destructor]] void report() {
  if (fault().below.empty()) return;
  int descriptors = 0;
  for (const auto& kind : kinds)
    if (kind != Kind::other) ++descriptors;
  const int maps = mappings > 0 ? mappingsLeft() : 0;
  if (descriptors + maps > 0) {
    std::fprintf(stderr, "faults: %d descriptors, %d mappings left\n", descriptors, maps);
    ::_exit(77);
  }
  if (!fault().call.empty() && !happened) {
    std::fprintf(stderr, "faults: never happened\n");
    ::_exit(78);
  }
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const int file = openAny("open", path, flags, rest);
  va_end(rest);
  return file;
}

int open64(const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const int file = openAny("open64", path, flags, rest);
  va_end(rest);
  return file;
}

int stat(const char* path, struct stat* status) noexcept {
  return statusOfPath("stat", "stat", path, status);
}

int lstat(const char* path, struct stat* status) noexcept {
  return statusOfPath("lstat", "lstat", path, status);
}

int fstat(int file, struct stat* status) noexcept {
  return statusOfFile("fstat", file, status);
}

void* mmap(void* address, std::size_t size, int protection, int flags, int file,
           off_t offset) noexcept {
  return map("mmap", address, size, protection, flags, file, offset);
}

int mkdir(const char* path, mode_t mode) noexcept {
  if (isConcerned(path) && failsNow("mkdir")) return -1;
  return next<int (*)(const char*, mode_t)>("mkdir")(path, mode);
}

int unlink(const char* path) noexcept {
  if (isConcerned(path) && failsNow("unlink")) return -1;
  return next<int (*)(const char*)>("unlink")(path);
}

ssize_t writev(int file, const iovec* parts, int count) {
  if (kindOf(file) == Kind::output) {
    if (failsNow("write")) return -1;
    if (fault().action == "short") {
      const iovec& part = *std::find_if(parts, parts + count - 1,
                                        [](const iovec& some) { return some.iov_len != 0; });
      const std::size_t size = part.iov_len > 1 ? part.iov_len / 3 + 1 : part.iov_len;
      return next<ssize_t (*)(int, const void*, std::size_t)>("write")(file, part.iov_base, size);
    }
  }
  return next<ssize_t (*)(int, const iovec*, int)>("writev")(file, parts, count);
}

int close(int file) {
  const Kind kind = kindOf(file);
  if (kind != Kind::other) kinds[static_cast<std::size_t>(file)] = Kind::other;
  const int result = next<int (*)(int)>("close")(file);
  // The system closes a descriptor also where it reports an error.
  return kind == Kind::output && failsNow("close") ? -1 : result;
}

}  // extern "C"
