#include "platform/queues.hpp"

#include <pthread.h>
#include <utility>

namespace corvana {
namespace {

constexpr std::size_t mostWaitingTasks = 1024;

}  // namespace

SerialQueue::SerialQueue(const std::string& label) : thread_([this] { run(); }) {
  ::pthread_setname_np(thread_.native_handle(), label.c_str());
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
    task();
    task = nullptr;
    lock.lock();
  }
}

void RunLoop::post(Task task) {
  {
    std::unique_lock lock(mutex_);
    drained_.wait(lock, [this] {
      return tasks_.size() < mostWaitingTasks || std::this_thread::get_id() == runner_;
    });
    tasks_.push_back(std::move(task));
  }
  filled_.notify_one();
}

void RunLoop::runUntil(const std::function<bool()>& done) {
  std::unique_lock lock(mutex_);
  runner_ = std::this_thread::get_id();
  for (;;) {
    lock.unlock();
    if (done()) return;
    lock.lock();
    filled_.wait(lock, [this] { return !tasks_.empty(); });
    const Task task = std::move(tasks_.front());
    tasks_.pop_front();
    lock.unlock();
    drained_.notify_one();
    task();
    lock.lock();
  }
}

}  // namespace corvana
