// A main queue for tests: tasks wait until the test runs them.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <utility>

#include "platform/queues.hpp"

namespace corvana::test {

class RunLoop : public MainQueue {
 public:
  void post(Task task) override {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
    filled_.notify_one();
  }

  /// Until `done`, asked before each task, answers true.
  void runUntil(const std::function<bool()>& done) {
    while (!done()) {
      std::unique_lock lock(mutex_);
      filled_.wait(lock, [this] { return !tasks_.empty(); });
      const Task task = std::move(tasks_.front());
      tasks_.pop_front();
      lock.unlock();
      task();
    }
  }

 private:
  std::mutex mutex_;
  std::condition_variable filled_;
  std::deque<Task> tasks_;
};

}  // namespace corvana::test
