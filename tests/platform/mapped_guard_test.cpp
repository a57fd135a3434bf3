// Inputs that become shorter while they are read.
#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <thread>

#include "platform/files.hpp"

namespace corvana {
namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t size = 64 * 1024 + 100;

class MappedGuardTest : public testing::Test {
 protected:
  MappedGuardTest() {
    std::string pattern = (fs::temp_directory_path() / "corvana-guard-XXXXXX").native();
    folder_ = ::mkdtemp(pattern.data());
  }
  ~MappedGuardTest() override { fs::remove_all(folder_); }

  fs::path makeFile(const std::string& name) const {
    fs::path path = folder_ / name;
    std::ofstream(path, std::ios::binary) << std::string(size, 'x');
    return path;
  }

 private:
  fs::path folder_;
};

unsigned sumOf(std::span<const std::uint8_t> bytes) {
  volatile unsigned sum = 0;  // the bytes are to be read even where nobody wants the sum
  for (const std::uint8_t byte : bytes)
    sum = sum + byte;
  return sum;
}

using Reader = std::function<void(std::span<const std::uint8_t>)>;

std::string messageOfReading(const InputFile& file, const Reader& reader) {
  try {
    file.read(reader);
  } catch (const FileError& error) {
    return error.what();
  }
  return "no FileError";
}

/// Ended by this signal, or by a sanitizer that reports it.
struct DiedOf {
  int signal;
  bool operator()(int status) const {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    if (WIFEXITED(status) && WEXITSTATUS(status) != 0) return true;
#endif
    return WIFSIGNALED(status) && WTERMSIG(status) == signal;
  }
};

TEST_F(MappedGuardTest, shrunkenFileIsAnInputErrorWhateverTheReaderMadeOfIt) {
  for (const std::uintmax_t left :
       std::initializer_list<std::uintmax_t>{0, 1, 4096, size - 4096, size - 1}) {
    const fs::path path = makeFile("shrinks.wav");
    const InputFile file(path);
    const std::string expected = "Cannot read '" + path.native() + "': Input/output error";
    fs::resize_file(path, left);
    EXPECT_EQ(messageOfReading(file, sumOf), expected) << left;
    EXPECT_EQ(messageOfReading(file,
                               [](std::span<const std::uint8_t> bytes) {
                                 sumOf(bytes);
                                 throw std::runtime_error("damaged");
                               }),
              expected);
    EXPECT_EQ(messageOfReading(file, [](auto) {}), expected) << "lost once, lost for good";
  }
}

TEST_F(MappedGuardTest, growingOrRemovedFileStaysReadable) {
  const fs::path path = makeFile("grows.wav");
  const InputFile file(path);
  fs::resize_file(path, 2 * size);
  fs::remove(path);
  EXPECT_EQ(file.read(sumOf), 'x' * size);
  EXPECT_THROW(file.read([](auto) { throw std::runtime_error("own"); }), std::runtime_error);
}

TEST_F(MappedGuardTest, threadsLoseOnlyTheirOwnFile) {
  constexpr int threadCount = 4;
  constexpr int rounds = 50;
  std::array<std::thread, threadCount> threads;
  std::atomic<int> lost = 0;
  std::atomic<int> wrong = 0;
  for (int t = 0; t < threadCount; ++t) {
    threads[static_cast<std::size_t>(t)] = std::thread([&, t] {
      const bool shrinks = t % 2 == 0;
      for (int i = 0; i < rounds; ++i) {
        const fs::path path = makeFile(std::to_string(t));
        const InputFile file(path);
        if (shrinks) fs::resize_file(path, 4096);
        unsigned sum = 0;
        const std::string message = messageOfReading(file, [&](auto bytes) { sum = sumOf(bytes); });
        if (shrinks && message.ends_with("Input/output error")) ++lost;
        if (!shrinks && sum != 'x' * size) ++wrong;
      }
    });
  }
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(lost, threadCount / 2 * rounds);
  EXPECT_EQ(wrong, 0);
}

using MappedGuardDeathTest = MappedGuardTest;

TEST_F(MappedGuardDeathTest, otherFaultsKeepTheirEffect) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const fs::path lostPath = makeFile("lost.wav");
  const InputFile lost(lostPath);
  const InputFile whole(makeFile("whole.wav"));
  std::span<const std::uint8_t> leaked;
  EXPECT_EQ(messageOfReading(lost, [&](auto bytes) { leaked = bytes; }), "no FileError");
  fs::resize_file(lostPath, 0);
  EXPECT_EXIT(sumOf(leaked), DiedOf{SIGBUS}, "") << "outside of read()";
  EXPECT_EXIT(whole.read([&](auto) { sumOf(leaked); }), DiedOf{SIGBUS}, "") << "another file";
  EXPECT_EXIT(whole.read([&](auto) { std::thread([&] { sumOf(leaked); }).join(); }), DiedOf{SIGBUS},
              "")
      << "another thread";
  EXPECT_EXIT(whole.read([](auto) { std::raise(SIGBUS); }), DiedOf{SIGBUS}, "") << "sent";
  EXPECT_EXIT(whole.read([](auto) { std::raise(SIGSEGV); }), DiedOf{SIGSEGV}, "")
      << "another signal";
}

}  // namespace
}  // namespace corvana
