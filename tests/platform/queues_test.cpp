#include "platform/queues.hpp"

#include <atomic>
#include <future>
#include <gtest/gtest.h>
#include <stdexcept>

namespace corvana {
namespace {

TEST(SerialQueue, EndsAfterTheRunningTaskAndDropsTheRest) {
  std::promise<void> running;
  std::atomic<bool> ended = false;
  std::atomic<bool> second = false;
  {
    SerialQueue queue("test");
    queue.post([&] {
      running.set_value();
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
      ended = true;
    });
    queue.post([&] { second = true; });
    running.get_future().wait();
  }
  EXPECT_TRUE(ended);
  EXPECT_FALSE(second);
}

TEST(SerialQueue, ATaskThatThrowsEndsTheProgram) {
  const auto run = [] {
    SerialQueue queue("test");
    queue.post([] { throw std::runtime_error("a \x1b reason"); });
    queue.post([] { std::_Exit(0); });
    std::this_thread::sleep_for(std::chrono::seconds(20));
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(1), "Corvana cannot go on: a \uFFFD reason\n");
}

}  // namespace
}  // namespace corvana
