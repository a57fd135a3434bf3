// Queues of work: one worker thread for conversions, and the thread that owns everything a
// person sees.
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

/// Runs tasks one at a time on a thread of its own, in the order in which they were given.
class SerialQueue {
 public:
  /// `label` names the thread for debuggers (at most 15 characters) where the system has such
  /// names.
  explicit SerialQueue(const std::string& label);
  SerialQueue(const SerialQueue&) = delete;
  SerialQueue& operator=(const SerialQueue&) = delete;
  /// Waits for the running task; tasks not yet started are dropped.
  ~SerialQueue();

  /// Any thread.
  void async(Task task);

 private:
  void run();

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Task> tasks_;
  bool ending_ = false;
  std::thread thread_;
};

/// Where a worker posts what the main thread shall do, in the order of the posts. The window's
/// is the toolkit's event loop, the command line's a RunLoop.
class MainQueue {
 public:
  virtual ~MainQueue() = default;
  /// Any thread.
  virtual void post(Task task) = 0;
};

/// A main queue for a program without a toolkit.
class RunLoop : public MainQueue {
 public:
  /// A worker that is far ahead of the main thread waits here, so that a stalled terminal does
  /// not fill the memory.
  void post(Task task) override;

  /// Runs posted tasks on the calling thread until `done`, asked after each, answers true.
  void runUntil(const std::function<bool()>& done);

 private:
  void takeTasks();

  std::mutex mutex_;
  std::condition_variable filled_;
  std::condition_variable drained_;
  std::deque<Task> tasks_;
  bool isAsleep_ = false;  ///< the next post has to wake the runner
  std::thread::id runner_;
  std::deque<Task> taken_;  ///< the runner's alone: tasks that are next
};

}  // namespace corvana
