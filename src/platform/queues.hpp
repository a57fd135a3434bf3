// Queues of work: for conversions, and for everything a person sees.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace corvana {

/// One that throws ends the program (endForException): others would wait for it for ever.
using Task = std::function<void()>;

/// Takes tasks and runs them one at a time, in the order in which each thread gave them.
class TaskQueue {
 public:
  virtual ~TaskQueue() = default;
  /// Any thread.
  virtual void post(Task task) = 0;
};

/// Where a worker posts what the main thread shall do. The window's is the toolkit's event loop.
using MainQueue = TaskQueue;

/// Runs tasks on a thread of its own.
class SerialQueue : public TaskQueue {
 public:
  /// `label` names the thread for debuggers (at most 15 characters) where the system has such
  /// names.
  explicit SerialQueue(const std::string& label);
  SerialQueue(const SerialQueue&) = delete;
  SerialQueue& operator=(const SerialQueue&) = delete;
  /// Waits for the running task; tasks not yet started are dropped.
  ~SerialQueue() override;

  void post(Task task) override;

 private:
  void run();

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Task> tasks_;
  bool ending_ = false;
  std::thread thread_;
};

/// Runs each task at once, on the thread that posts it; the threads take turns. For a program that
/// has nothing to do but these tasks. A task is not to post to its own queue.
class DirectQueue : public TaskQueue {
 public:
  void post(Task task) override;

 private:
  std::mutex mutex_;
};

}  // namespace corvana
