// Reading mapped memory whose file may go away. Where a mapped file has been cut short, or its
// medium fails, the system sends SIGBUS to the thread that touches the page; without a guard that
// ends the program and with it the whole batch.
#pragma once

#include <atomic>
#include <cstdint>
#include <span>

namespace corvana {

/// One mapping that a thread reads.
struct GuardedMapping {
  std::uint8_t* begin = nullptr;
  std::size_t size = 0;
  std::atomic<bool>* lost = nullptr;
  const GuardedMapping* outer = nullptr;  ///< the one that is read at the same time
};

/// While it lives, a SIGBUS of this thread inside `mapping` puts zeros in place of the mapping's
/// rest and sets `lost` instead of ending the program; reading goes on, and what was read counts
/// for nothing. Signals and faults of any other kind, place or thread keep their effect. Any
/// thread; of several guards of a thread, the last one made goes first.
class MappedGuard {
 public:
  /// `mapping` starts on a page and stays mapped as long as the guard; `lost` outlives it.
  MappedGuard(std::span<const std::uint8_t> mapping, std::atomic<bool>& lost);
  MappedGuard(const MappedGuard&) = delete;
  MappedGuard& operator=(const MappedGuard&) = delete;
  ~MappedGuard();

 private:
  GuardedMapping mapping_;
};

}  // namespace corvana
