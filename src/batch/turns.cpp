#include "batch/turns.hpp"

#include <thread>

namespace corvana {
namespace {

/// The turn of a small file takes some microseconds, less than falling asleep and being woken.
constexpr int maxTries = 200;

}  // namespace

bool Turns::begin(std::uint64_t number) {
  const auto isOver = [&] { return isClosed_ || now_ == number; };
  for (int tries = 0; tries < maxTries && !isOver(); ++tries)
    std::this_thread::yield();
  if (!isOver()) {
    std::unique_lock lock(mutex_);
    ofNumber(number).wait(lock, isOver);
  }
  return !isClosed_;
}

void Turns::end() {
  std::uint64_t next = 0;
  {
    const std::lock_guard lock(mutex_);
    next = ++now_;
  }
  ofNumber(next).notify_one();
}

void Turns::close() {
  {
    const std::lock_guard lock(mutex_);
    isClosed_ = true;
  }
  for (std::condition_variable& changed : changed_)
    changed.notify_one();
}

}  // namespace corvana
