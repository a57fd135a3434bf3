#include "cli/interrupts.hpp"

#include <csignal>
#include <ctime>
#include <unistd.h>
#include <utility>

namespace corvana {
namespace {

/// Wakes the watcher when the program ends by itself.
constexpr int wakeSignal = SIGUSR1;

/// Time to finish the current block or small file; together with the way out it stays below a
/// second.
constexpr timespec grace{0, 800'000'000};

bool isIgnored(int signal) {
  struct sigaction action {};
  return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

sigset_t heldSignals() {
  sigset_t signals;
  ::sigemptyset(&signals);
  ::sigaddset(&signals, wakeSignal);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP})
    if (!isIgnored(signal)) ::sigaddset(&signals, signal);
  return signals;
}

}  // namespace

void holdInterrupts() {
  const sigset_t signals = heldSignals();
  ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

InterruptWatcher::InterruptWatcher(std::function<void()> stop)
    : stop_(std::move(stop)), thread_([this] { watch(); }) {}

InterruptWatcher::~InterruptWatcher() {
  ending_ = true;
  ::pthread_kill(thread_.native_handle(), wakeSignal);
  thread_.join();
}

void InterruptWatcher::watch() {
  const sigset_t signals = heldSignals();
  int signal = 0;
  while (::sigwait(&signals, &signal) != 0 || (signal == wakeSignal && !ending_)) {
  }
  if (ending_) return;
  exitStatus_ = 128 + signal;
  stop_();
  // Another signal and the end of the grace both mean: now. The wake-up of the destructor means
  // that the program has ended in time.
  ::sigtimedwait(&signals, nullptr, &grace);
  if (!ending_) ::_exit(exitStatus_);
}

}  // namespace corvana
