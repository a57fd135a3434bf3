#include "app/qt_main_queue.hpp"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEvent>
#include <QTimer>
#include <utility>

#include "platform/ending.hpp"

namespace corvana {
namespace {

/// How long tasks may run before mouse, keyboard and painting have their turn: half a picture
/// at 60 Hz.
constexpr std::chrono::milliseconds turn{8};

/// Between two batches. To be woken for every small file would cost the worker and the window
/// more time than the file.
constexpr std::chrono::milliseconds pause{10};

}  // namespace

void QtMainQueue::post(Task task) {
  doOrEnd([&] {
    {
      const std::lock_guard lock(mutex_);
      tasks_.push_back(std::move(task));
      if (isWoken_) return;
      isWoken_ = true;
    }
    QCoreApplication::postEvent(this, new QEvent(QEvent::User));
  });
}

bool QtMainQueue::event(QEvent* event) {
  if (event->type() != QEvent::User) return QObject::event(event);
  doOrEnd([this] {
    const std::chrono::milliseconds elapsed(sinceBatch_.isValid() ? sinceBatch_.elapsed() : 0);
    if (!sinceBatch_.isValid() || elapsed >= pause) {
      runTasks();
    } else {
      runTasksAfter(pause - elapsed);
    }
  });
  return true;
}

void QtMainQueue::runTasksAfter(std::chrono::milliseconds delay) {
  QTimer::singleShot(delay, Qt::PreciseTimer, this, [this] { doOrEnd([this] { runTasks(); }); });
}

void QtMainQueue::runTasks() {
  const QDeadlineTimer turnEnd(turn);
  do {
    Task task;
    {
      const std::lock_guard lock(mutex_);
      if (tasks_.empty()) {
        isWoken_ = false;
        sinceBatch_.start();
        return;
      }
      task = std::move(tasks_.front());
      tasks_.pop_front();
    }
    task();
  } while (!turnEnd.hasExpired());
  // Not an event again: the loop delivers all posted events, new ones too, before it looks for
  // input, and thousands of small files post faster than that.
  runTasksAfter({});
}

}  // namespace corvana
