#include "platform/queues.hpp"

#include <atomic>
#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace corvana {
namespace {

TEST(SerialQueue, EndsAfterTheRunningTaskAndDropsTheRest) {
  std::promise<void> running;
  std::promise<void> mayEnd;
  std::atomic<bool> ended = false;
  std::atomic<bool> second = false;
  auto queue = std::make_unique<SerialQueue>("test");
  queue->async([&] {
    running.set_value();
    mayEnd.get_future().wait();
    ended = true;
  });
  queue->async([&] { second = true; });
  running.get_future().wait();
  std::thread release([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    mayEnd.set_value();
  });
  queue.reset();
  EXPECT_TRUE(ended);
  EXPECT_FALSE(second);
  release.join();
}

TEST(RunLoop, KeepsTheOrderOfAWorkerThatIsFarAhead) {
  constexpr int count = 10'000;
  std::vector<int> order;
  RunLoop loop;
  std::thread worker([&] {
    for (int i = 0; i < count; ++i)
      loop.post([&order, i] { order.push_back(i); });
  });
  loop.runUntil([&] { return order.size() == count; });
  worker.join();
  EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

}  // namespace
}  // namespace corvana
