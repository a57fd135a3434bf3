#include "platform/mapped_guard.hpp"

#include <cerrno>
#include <csignal>
#include <sys/mman.h>
#include <unistd.h>

namespace corvana {
namespace {

static_assert(std::atomic<bool>::is_always_lock_free, "set by a signal handler");

// Plain data without a constructor, so that the signal handler may use it.
constinit thread_local const GuardedMapping* innermost = nullptr;
struct sigaction previousAction {};
std::size_t pageSize = 0;

/// Whether the system itself reports a failed access; otherwise a process or thread sent the
/// signal.
bool isFault(int code) {
#if CORVANA_HAS_MEMORY_FAILURES
  if (code == BUS_MCEERR_AR || code == BUS_MCEERR_AO) return true;
#endif
  return code == BUS_ADRALN || code == BUS_ADRERR || code == BUS_OBJERR;
}

/// Whether `address` lies in the mapping that this thread reads and now holds zeros.
bool replaceLostPages(const void* address) {
  for (const GuardedMapping* guarded = innermost; guarded != nullptr; guarded = guarded->outer) {
    const std::size_t offset = reinterpret_cast<std::uintptr_t>(address) -
                               reinterpret_cast<std::uintptr_t>(guarded->begin);
    if (offset >= guarded->size) continue;
    // First, so that no other reader of the mapping sees the zeros without seeing this.
    guarded->lost->store(true);
    const std::size_t kept = offset / pageSize * pageSize;
    return ::mmap(guarded->begin + kept, guarded->size - kept, PROT_READ,
                  MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0) != MAP_FAILED;
  }
  return false;
}

// Jumping out of the handler would skip the destructors between here and the reader. Repairing
// the memory and returning lets the reader run on to a place where it can throw.
void onBusError(int signal, siginfo_t* info, void*) {
  const int savedError = errno;
  const bool fault = isFault(info->si_code);
  if (!fault || !replaceLostPages(info->si_addr)) {
    // A fault repeats as soon as the handler returns, and then has its usual effect.
    ::sigaction(SIGBUS, &previousAction, nullptr);
    if (!fault) ::raise(signal);
  }
  errno = savedError;
}

bool installHandler() {
  pageSize = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  struct sigaction action {};
  action.sa_sigaction = onBusError;
  action.sa_flags = SA_SIGINFO | SA_RESTART;
  ::sigemptyset(&action.sa_mask);
  return ::sigaction(SIGBUS, &action, &previousAction) == 0;
}

}  // namespace

MappedGuard::MappedGuard(std::span<const std::uint8_t> mapping, std::atomic<bool>& lost)
    : mapping_{const_cast<std::uint8_t*>(mapping.data()), mapping.size(), &lost, innermost} {
  [[maybe_unused]] static const bool installed = installHandler();
  innermost = &mapping_;
  // The handler runs on this thread: the record has to be in memory before the first read.
  std::atomic_signal_fence(std::memory_order_seq_cst);
}

MappedGuard::~MappedGuard() {
  std::atomic_signal_fence(std::memory_order_seq_cst);
  innermost = mapping_.outer;
}

}  // namespace corvana
