// Ctrl-C and the other ways in which a terminal program is asked to end.
#pragma once

#include <atomic>
#include <functional>
#include <pthread.h>
#include <thread>

namespace corvana {

/// Keeps SIGINT, SIGTERM and SIGHUP from ending the program at once, until an InterruptWatcher
/// takes them. Signals that are ignored stay ignored. To be called before other threads exist,
/// since threads inherit what is blocked.
void holdInterrupts();

/// Calls `stop` on a thread of its own when a held signal comes. A program that is still there
/// a moment later, or is asked a second time, is ended.
class InterruptWatcher {
 public:
  explicit InterruptWatcher(std::function<void()> stop);
  InterruptWatcher(const InterruptWatcher&) = delete;
  InterruptWatcher& operator=(const InterruptWatcher&) = delete;
  ~InterruptWatcher();

  /// The customary exit status of a program ended by the signal (128 + its number); 0 when
  /// there was none.
  int exitStatus() const { return exitStatus_; }

 private:
  void watch();

  std::function<void()> stop_;
  std::atomic<int> exitStatus_ = 0;
  std::atomic<bool> ending_ = false;
  std::thread thread_;
};

}  // namespace corvana
