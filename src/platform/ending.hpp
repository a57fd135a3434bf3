// What ends a program before its work is done, and that it then takes less than a second, whatever
// its threads wait for.
#pragma once

#include <string>

namespace corvana {

/// From now on SIGINT, SIGTERM and SIGHUP ask the program to end: interruptStatus() tells, and the
/// time of endInTime() runs. A second one of them ends it at once. Signals that are ignored stay
/// ignored. To be called before other threads exist.
void catchInterrupts();

/// What a program ended by the first caught signal returns: 128 + its number; 0 while there was
/// none; 1 after endForException. Never goes back. Any thread.
int interruptStatus();

/// The program is on its way out. If it is still there in 0.8 seconds, it ends at once and
/// returns interruptStatus(). Main thread.
void endInTime();

/// The hidden file `name` of an open folder, which a program that ends at once takes along. The
/// name is at most 63 characters long. Of more than 256 at a time, some are left behind. Any
/// thread.
class UnfinishedFile {
 public:
  UnfinishedFile(int folder, const std::string& name);
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;
  ~UnfinishedFile();

 private:
  struct Place* place_ = nullptr;
};

/// What tells this run of the program from others that go on at the same time.
int processNumber();

/// From now on a write to a reader that went away or beyond the limit on the size of files fails
/// and does not end the program.
void ignoreWriteSignals();

/// To be called where an exception is handled that leaves no way to go on: says it on standard
/// error and ends the program with status 1, at once, whatever its threads wait for. Any thread.
[[noreturn]] void endForException() noexcept;

/// Does work that everything after it relies on: an exception out of it ends the program.
template <typename Work>
void doOrEnd(const Work& work) noexcept {
  try {
    work();
  } catch (...) {
    endForException();
  }
}

}  // namespace corvana
