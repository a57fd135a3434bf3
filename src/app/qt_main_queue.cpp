#include "app/qt_main_queue.hpp"

#include <QTimer>
#include <chrono>
#include <utility>

#include "platform/ending.hpp"

namespace corvana {
namespace {

/// From the first post of a batch to the batch: nobody sees it, and to wake the window for every
/// post would slow down a worker that converts small files.
constexpr std::chrono::milliseconds pause{10};

}  // namespace

void QtMainQueue::post(Task task) {
  doOrEnd([&] {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
    if (tasks_.size() > 1) return;
    const auto wait = [this] {
      QTimer::singleShot(pause, Qt::PreciseTimer, this, &QtMainQueue::runTasks);
    };
    QMetaObject::invokeMethod(this, wait, Qt::QueuedConnection);
  });
}

void QtMainQueue::runTasks() {
  std::vector<Task> tasks;
  {
    const std::lock_guard lock(mutex_);
    tasks.swap(tasks_);
  }
  for (const Task& task : tasks)
    task();
  batchEnded_();
}

}  // namespace corvana
