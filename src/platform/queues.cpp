#include "platform/queues.hpp"

#include <utility>

#if CORVANA_HAS_NAMED_THREADS
#include <pthread.h>
#endif

#include "platform/ending.hpp"

namespace corvana {

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

void SerialQueue::post(Task task) {
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

void DirectQueue::post(Task task) {
  const std::lock_guard lock(mutex_);
  doOrEnd(task);
}

}  // namespace corvana
