// The main queue of the window: posted tasks run in the toolkit's event loop.
#pragma once

#include <QObject>
#include <functional>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/queues.hpp"

namespace corvana {

/// Runs tasks in batches, some milliseconds apart. Made and destroyed on the main thread; tasks
/// that have not run by then are dropped. Where a task cannot be taken, the program ends
/// (endForException); a task that throws is the event loop's business (Application).
class QtMainQueue : public QObject, public MainQueue {
 public:
  /// `batchEnded` is called on the main thread after each batch.
  explicit QtMainQueue(std::function<void()> batchEnded) : batchEnded_(std::move(batchEnded)) {}

  void post(Task task) override;

 private:
  void runTasks();

  const std::function<void()> batchEnded_;
  std::mutex mutex_;
  std::vector<Task> tasks_;  // while there are any, runTasks will come
};

}  // namespace corvana
