#include "platform/ending.hpp"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string>
#include <sys/time.h>
#include <unistd.h>

#include "vocabulary/screen_text.hpp"

namespace corvana {

/// Its owner writes the name while no handler may read it.
struct Place {
  std::atomic<int> folder = -1;
  std::array<char, 64> name{};
};

namespace {

/// Time to finish the current block or small file; together with the way out it stays below a
/// second.
constexpr itimerval grace{{0, 0}, {0, 800'000}};

std::atomic<int> exitStatus = 0;
static_assert(std::atomic<int>::is_always_lock_free, "set by a signal handler");

// Of the places for unfinished files: no folder.
constexpr int freePlace = -1;
constexpr int placeBeingFilled = -2;
constinit std::array<Place, 256> places{};

[[noreturn]] void endAtOnce() {
  for (const Place& place : places)
    if (const int folder = place.folder; folder >= 0) ::unlinkat(folder, place.name.data(), 0);
  ::_exit(exitStatus);
}

void onGraceOver(int) {
  endAtOnce();
}

// Nothing but system calls, since it may interrupt any thread anywhere.
void onInterrupt(int signal) {
  const int savedError = errno;
  int earlier = 0;
  if (!exitStatus.compare_exchange_strong(earlier, 128 + signal)) endAtOnce();
  ::setitimer(ITIMER_REAL, &grace, nullptr);
  errno = savedError;
}

bool isIgnored(int signal) {
  struct sigaction action {};
  return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

void handle(int signal, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;
  ::sigemptyset(&action.sa_mask);
  ::sigaction(signal, &action, nullptr);
  // A program inherits what its parent has blocked.
  sigset_t signals;
  ::sigemptyset(&signals);
  ::sigaddset(&signals, signal);
  ::pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

/// Past the stream's lock, which a thread that is stuck may hold.
void say(std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(STDERR_FILENO, text.data(), text.size());
    if (written <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

/// Of the exception being handled.
std::string exceptionText() {
  try {
    throw;
  } catch (const std::bad_alloc&) {
    return "out of memory";
  } catch (const std::exception& error) {
    return readableLine(error.what());
  } catch (...) {
    return "unknown reason";
  }
}

}  // namespace

void catchInterrupts() {
  handle(SIGALRM, onGraceOver);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP})
    if (!isIgnored(signal)) handle(signal, onInterrupt);
}

int interruptStatus() {
  return exitStatus;
}

void endInTime() {
  handle(SIGALRM, onGraceOver);
  ::setitimer(ITIMER_REAL, &grace, nullptr);
}

UnfinishedFile::UnfinishedFile(int folder, const std::string& name) {
  for (Place& place : places) {
    int expected = freePlace;
    if (!place.folder.compare_exchange_strong(expected, placeBeingFilled)) continue;
    std::strncpy(place.name.data(), name.c_str(), place.name.size() - 1);
    place.folder = folder;
    place_ = &place;
    return;
  }
}

UnfinishedFile::~UnfinishedFile() {
  if (place_ != nullptr) place_->folder = freePlace;
}

int processNumber() {
  return ::getpid();
}

void ignoreWriteSignals() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

void endForException() noexcept {
  constexpr int statusFailed = 1;
  int none = 0;
  exitStatus.compare_exchange_strong(none, statusFailed);
  endInTime();                                  // in case that nobody takes the message
  if (::isatty(STDERR_FILENO) != 0) say("\n");  // behind a line of progress
  say("Corvana cannot go on: ");
  try {
    say(exceptionText());
  } catch (...) {
    say("out of memory");
  }
  say("\n");
  endAtOnce();
}

}  // namespace corvana
