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
namespace {

/// Time to finish the current block or small file; together with the way out it stays below a
/// second.
constexpr itimerval grace{{0, 0}, {0, 800'000}};

std::atomic<int> exitStatus = 0;
static_assert(std::atomic<int>::is_always_lock_free, "set by a signal handler");

// Written by one thread while no handler may read it: the folder is -1 then.
std::atomic<int> unfinishedFolder = -1;
std::array<char, 64> unfinishedName{};

[[noreturn]] void endAtOnce() {
  if (const int folder = unfinishedFolder; folder >= 0)
    ::unlinkat(folder, unfinishedName.data(), 0);
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

void setUnfinishedFile(int folder, const char* name) {
  unfinishedFolder = -1;
  std::strncpy(unfinishedName.data(), name, unfinishedName.size() - 1);
  unfinishedFolder = folder;
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
