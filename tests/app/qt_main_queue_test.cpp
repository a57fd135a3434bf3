#include "app/qt_main_queue.hpp"

#include <QTest>
#include <cstdlib>
#include <gtest/gtest.h>
#include <new>
#include <stdexcept>

namespace {
bool memoryFails = false;
}

void* operator new(std::size_t size) {
  void* memory = memoryFails ? nullptr : std::malloc(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return std::malloc(size);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace corvana {
namespace {

TEST(QtMainQueue, EndsTheProgramWhereItCannotGoOn) {
  const auto runTask = [] {
    QtMainQueue queue([] {});
    queue.post([] { throw std::runtime_error("reason"); });
    QTest::qWait(20'000);
  };
  const auto post = [] {
    QtMainQueue queue([] {});
    memoryFails = true;
    queue.post([] {});
  };
  EXPECT_EXIT(runTask(), testing::ExitedWithCode(1), "Corvana cannot go on: reason\n");
  EXPECT_EXIT(post(), testing::ExitedWithCode(1), "Corvana cannot go on: out of memory\n");
}

}  // namespace
}  // namespace corvana
