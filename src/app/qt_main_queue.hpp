// The main queue of the window: posted tasks run in the toolkit's event loop.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <chrono>
#include <deque>
#include <mutex>

#include "platform/queues.hpp"

namespace corvana {

/// Runs tasks in batches, some milliseconds apart. Made and destroyed on the main thread; tasks
/// that have not run by then are dropped. Where memory fails, the program ends (endForException).
class QtMainQueue : public QObject, public MainQueue {
 public:
  void post(Task task) override;

 protected:
  bool event(QEvent* event) override;

 private:
  void runTasks();
  void runTasksAfter(std::chrono::milliseconds delay);

  std::mutex mutex_;
  std::deque<Task> tasks_;
  bool isWoken_ = false;  // runTasks will come
  QElapsedTimer sinceBatch_;
};

}  // namespace corvana
