#include "platform/queues.hpp"

#include <chrono>
#include <utility>

#if CORVANA_HAS_NAMED_THREADS
#include <pthread.h>
#endif

#include "platform/ending.hpp"

namespace corvana {
namespace {

constexpr std::size_t maxWaitingTasks = 1024;

/// A worker that converts small files posts thousands of tasks a second. To be woken for each
/// would cost it as much as writing a file; this short a delay nobody sees.
constexpr std::chrono::microseconds wakeDelay{500};

}  // namespace

SerialQueue::SerialQueue([[maybe_unused]] const std::string& label) : thread_([this] { run(); }) {
#if CORVANA_HAS_NAMED_THREADS
  ::pthread_setname_np(thread_.native_handle(), label.c_str());
#endif
}

SerialQueue::~SerialQueue() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  changed_.notify_one();
  thread_.join();
}

void SerialQueue::async(Task task) {
  {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
  }
  changed_.notify_one();
}

void SerialQueue::run() {
  std::unique_lock lock(mutex_);
  for (;;) {
    changed_.wait(lock, [this] { return ending_ || !tasks_.empty(); });
    if (ending_) return;
    Task task = std::move(tasks_.front());
    tasks_.pop_front();
    lock.unlock();
    doOrEnd(task);
    task = nullptr;
    lock.lock();
  }
}

void RunLoop::post(Task task) {
  bool wake = false;
  {
    std::unique_lock lock(mutex_);
    drained_.wait(lock, [this] {
      return tasks_.size() < maxWaitingTasks || std::this_thread::get_id() == runner_;
    });
    tasks_.push_back(std::move(task));
    wake = std::exchange(isAsleep_, false);
  }
  if (wake) filled_.notify_one();
}

void RunLoop::runUntil(const std::function<bool()>& done) {
  {
    const std::lock_guard lock(mutex_);
    runner_ = std::this_thread::get_id();
  }
  while (!done()) {
    if (taken_.empty()) takeTasks();
    const Task task = std::move(taken_.front());
    taken_.pop_front();
    doOrEnd(task);
  }
}

void RunLoop::takeTasks() {
  std::unique_lock lock(mutex_);
  if (tasks_.empty()) {
    lock.unlock();
    std::this_thread::sleep_for(wakeDelay);
    lock.lock();
  }
  isAsleep_ = tasks_.empty();
  filled_.wait(lock, [this] { return !tasks_.empty(); });
  isAsleep_ = false;
  taken_.swap(tasks_);
  lock.unlock();
  drained_.notify_all();
}

}  // namespace corvana
