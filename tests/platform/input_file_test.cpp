// Inputs that are no files, or become shorter while they are read.
#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <stdexcept>
#include <sys/stat.h>
#include <thread>

#include "platform/files.hpp"
#include "support/conversion.hpp"
#include "support/temporary_folder.hpp"

namespace corvana {
namespace {

using namespace test;

constexpr std::uintmax_t size = 512 * 1024 + 100;
const std::string content(size, 'x');

TEST(InputFile, RefusesWhatIsNoRegularFileWithoutWaiting) {
  const TemporaryFolder folder;
  fs::create_directory(folder / "folder.wav");
  ASSERT_EQ(::mkfifo((folder / "pipe.wav").c_str(), 0600), 0);
  fs::create_symlink("nowhere", folder / "dangling.wav");
  const std::pair<fs::path, const char*> cases[] = {
      {folder / "dangling.wav", "No such file or directory"},
      {folder / "folder.wav", "Is a directory"},
      {folder / "pipe.wav", "Not a regular file"},
      {"/dev/zero", "Not a regular file"},
      {folder / std::string(300, 'x'), "File name too long"},
  };
  for (const auto& [path, reason] : cases)
    EXPECT_EQ(errorOf([&path = path] { openFile(path); }),
              "Cannot read '" + path.native() + "': " + reason);
  EXPECT_EQ(openFile(folder.write("empty", "")).read([](auto all) { return all.size(); }), 0U);
}

unsigned sumOf(std::span<const std::uint8_t> bytes) {
  volatile unsigned sum = 0;  // the bytes are to be read even where nobody wants the sum
  for (const std::uint8_t byte : bytes)
    sum = sum + byte;
  return sum;
}

TEST(MappedGuard, ShrunkenFileIsAnInputErrorWhateverTheReaderMadeOfIt) {
  const TemporaryFolder folder;
  const auto failingReader = [](std::span<const std::uint8_t> bytes) {
    sumOf(bytes);
    throw std::runtime_error("damaged");
  };
  for (const std::uintmax_t left : {std::uintmax_t{0}, std::uintmax_t{4096}, size - 1}) {
    const fs::path path = folder.write("shrinks.wav", content);
    const InputFile file = openFile(path);
    const std::string expected = "Cannot read '" + path.native() + "': Input/output error";
    fs::resize_file(path, left);
    EXPECT_EQ(errorOf([&] { file.read(sumOf); }), expected) << left;
    EXPECT_EQ(errorOf([&] { file.read(failingReader); }), expected);
    EXPECT_EQ(errorOf([&] { file.read([](auto) {}); }), expected) << "lost once, lost for good";
  }
  const InputFile removed = openFile(folder.write("grows.wav", content));
  fs::resize_file(folder / "grows.wav", 2 * size);
  fs::remove(folder / "grows.wav");
  EXPECT_EQ(removed.read(sumOf), 'x' * size);
  EXPECT_THROW(removed.read(failingReader), std::runtime_error);
}

#if CORVANA_HAS_MADVISE
TEST(InputFile, TakesWhatIsGivenBackOutOfTheMemory) {
  const auto residentPages = [] {
    long all = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> all >> resident;
    return resident;
  };
  if (residentPages() == 0) GTEST_SKIP() << "this system says nothing of the memory";
  const TemporaryFolder folder;
  const InputFile file = openFile(folder.write("big", std::string(8 << 20, 'x')));
  const long before = residentPages();
  EXPECT_EQ(file.read(sumOf), 'x' * (8U << 20));
  const long read = residentPages();
  EXPECT_GE(read, before + 1000);
  const std::uint64_t begin = file.giveBack(0, (4 << 20) + 1);
  EXPECT_LE(residentPages(), read - 500);
  EXPECT_EQ(file.giveBack(begin, begin + 10'000), begin);
  file.giveBack(begin, 8 << 20);
  EXPECT_LE(residentPages(), read - 1000);
  EXPECT_EQ(file.read(sumOf), 'x' * (8U << 20));
  file.giveBack(0, 8 << 20);
  fs::resize_file(folder / "big", 5 << 20);
  EXPECT_THROW(file.read(sumOf), FileError);
  EXPECT_EQ(file.giveBack(0, 8 << 20), 8U << 20);
  EXPECT_THROW(file.read(sumOf), FileError);
}
#endif

TEST(MappedGuardDeathTest, OtherFaultsKeepTheirEffect) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  std::optional<TemporaryFolder> folder(std::in_place);
  const InputFile lost = openFile(folder->write("lost.wav", content));
  const InputFile whole = openFile(folder->write("whole.wav", content));
  std::span<const std::uint8_t> leaked;
  lost.read([&](auto bytes) { leaked = bytes; });
  fs::resize_file(*folder / "lost.wav", 0);
  folder.reset();  // which those that die here could not remove
  const auto onThread = [&](auto) { std::thread([&] { sumOf(leaked); }).join(); };
  EXPECT_DEATH(sumOf(leaked), "") << "outside of read()";
  EXPECT_DEATH(whole.read([&](auto) { sumOf(leaked); }), "") << "another file";
  EXPECT_DEATH(lost.read(onThread), "") << "another thread";
  EXPECT_DEATH(whole.read([](auto) { std::raise(SIGBUS); }), "") << "sent";
}

}  // namespace
}  // namespace corvana
