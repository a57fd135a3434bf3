// A passage for several threads.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <vector>

namespace corvana {

/// Lets threads pass one at a time, in the order of their numbers from 0 on. Any thread.
class Turns {
 public:
  /// At most so many threads wait at a time, for numbers that follow on each other.
  explicit Turns(std::size_t threads) : changed_(threads) {}

  /// Waits until all earlier numbers have passed. False: nobody passes any more.
  bool begin(std::uint64_t number);
  /// Lets the next number pass.
  void end();
  /// Lets nobody pass any more. To be called by whoever has the turn.
  void close();

 private:
  std::condition_variable& ofNumber(std::uint64_t number) {
    return changed_[static_cast<std::size_t>(number % changed_.size())];
  }

  std::atomic<std::uint64_t> now_ = 0;
  std::atomic<bool> isClosed_ = false;
  std::mutex mutex_;
  std::vector<std::condition_variable> changed_;
};

}  // namespace corvana
