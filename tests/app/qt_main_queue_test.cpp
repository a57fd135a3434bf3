#include "app/qt_main_queue.hpp"

#include <QTest>
#include <gtest/gtest.h>
#include <stdexcept>

namespace corvana {
namespace {

TEST(QtMainQueue, ATaskThatThrowsEndsTheProgram) {
  const auto runTask = [] {
    QtMainQueue queue([] {});
    queue.post([] { throw std::runtime_error("reason"); });
    QTest::qWait(20'000);
  };
  EXPECT_EXIT(runTask(), testing::ExitedWithCode(1), "Corvana cannot go on: reason\n");
}

}  // namespace
}  // namespace corvana
