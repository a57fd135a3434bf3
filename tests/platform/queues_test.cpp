#include "platform/queues.hpp"

#include <atomic>
#include <future>
#include <gtest/gtest.h>
#include <stdexcept>
#include <vector>

namespace corvana {
namespace {

TEST(SerialQueue, EndsAfterTheRunningTaskAndDropsTheRest) {
  std::promise<void> running;
  std::atomic<bool> ended = false;
  std::atomic<bool> second = false;
  {
    SerialQueue queue("test");
    queue.async([&] {
      running.set_value();
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
      ended = true;
    });
    queue.async([&] { second = true; });
    running.get_future().wait();
  }
  EXPECT_TRUE(ended);
  EXPECT_FALSE(second);
}

TEST(SerialQueue, ATaskThatThrowsEndsTheProgram) {
  const auto run = [] {
    SerialQueue queue("test");
    queue.async([] { throw std::runtime_error("a \x1b reason"); });
    queue.async([] { std::_Exit(0); });
    std::this_thread::sleep_for(std::chrono::seconds(20));
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(1), "Corvana cannot go on: a \uFFFD reason\n");
}

TEST(RunLoop, HoldsAWorkerBackThatIsFarAheadAndKeepsItsOrder) {
  constexpr int count = 10'000;
  std::vector<int> order;
  std::atomic<int> posted = 0;
  RunLoop loop;
  std::thread worker([&] {
    for (int i = 0; i < count; ++i, ++posted)
      loop.post([&order, i] { order.push_back(i); });
  });
  while (posted < 1000)
    std::this_thread::yield();
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_LT(posted, count / 2);
  loop.runUntil([&] { return order.size() == count; });
  worker.join();
  EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(RunLoop, ATaskThatThrowsEndsTheProgramWhileAWorkerWaits) {
  const auto run = [] {
    RunLoop loop;
    SerialQueue worker("test");
    worker.async([&loop] {
      for (int i = 0; i < 5000; ++i)
        loop.post([] { throw std::bad_alloc(); });
    });
    loop.runUntil([] { return false; });
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(1), "Corvana cannot go on: out of memory\n");
}

}  // namespace
}  // namespace corvana
