// Inputs that are no files, or become shorter while they are read.
#include <csignal>
#include <gtest/gtest.h>
#include <optional>
#include <stdexcept>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>

#include "platform/files.hpp"
#include "support/temporary_folder.hpp"

namespace corvana {
namespace {

using namespace test;

constexpr std::uintmax_t size = 64 * 1024 + 100;
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
    try {
      const InputFile file = openFile(path);
      ADD_FAILURE() << path;
    } catch (const FileError& error) {
      EXPECT_EQ(error.what(), "Cannot read '" + path.native() + "': " + reason);
    }
  EXPECT_EQ(openFile(folder.write("empty", "")).read([](auto all) { return all.size(); }), 0U);
}

unsigned sumOf(std::span<const std::uint8_t> bytes) {
  volatile unsigned sum = 0;  // the bytes are to be read even where nobody wants the sum
  for (const std::uint8_t byte : bytes)
    sum = sum + byte;
  return sum;
}

template <typename Reader>
std::string messageOfReading(const InputFile& file, const Reader& reader) {
  try {
    file.read(reader);
  } catch (const FileError& error) {
    return error.what();
  }
  return "no FileError";
}

TEST(MappedGuard, ShrunkenFileIsAnInputErrorWhateverTheReaderMadeOfIt) {
  const TemporaryFolder folder;
  for (const std::uintmax_t left : {std::uintmax_t{0}, std::uintmax_t{4096}, size - 1}) {
    const fs::path path = folder.write("shrinks.wav", content);
    const InputFile file = openFile(path);
    const std::string expected = "Cannot read '" + path.native() + "': Input/output error";
    fs::resize_file(path, left);
    EXPECT_EQ(messageOfReading(file, sumOf), expected) << left;
    const auto failingReader = [](std::span<const std::uint8_t> bytes) {
      sumOf(bytes);
      throw std::runtime_error("damaged");
    };
    EXPECT_EQ(messageOfReading(file, failingReader), expected);
    EXPECT_EQ(messageOfReading(file, [](auto) {}), expected) << "lost once, lost for good";
  }
}

TEST(MappedGuard, GrowingOrRemovedFileStaysReadable) {
  const TemporaryFolder folder;
  const fs::path path = folder.write("grows.wav", content);
  const InputFile file = openFile(path);
  fs::resize_file(path, 2 * size);
  fs::remove(path);
  EXPECT_EQ(file.read(sumOf), 'x' * size);
  EXPECT_THROW(file.read([](auto) { throw std::runtime_error("own"); }), std::runtime_error);
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

TEST(MappedGuardDeathTest, OtherFaultsKeepTheirEffect) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  std::optional<TemporaryFolder> folder(std::in_place);
  const InputFile lost = openFile(folder->write("lost.wav", content));
  const InputFile whole = openFile(folder->write("whole.wav", content));
  std::span<const std::uint8_t> leaked;
  EXPECT_EQ(messageOfReading(lost, [&](auto bytes) { leaked = bytes; }), "no FileError");
  fs::resize_file(*folder / "lost.wav", 0);
  folder.reset();  // which those that die here could not remove
  const auto onThread = [&](auto) { std::thread([&] { sumOf(leaked); }).join(); };
  EXPECT_EXIT(sumOf(leaked), DiedOf{SIGBUS}, "") << "outside of read()";
  EXPECT_EXIT(whole.read([&](auto) { sumOf(leaked); }), DiedOf{SIGBUS}, "") << "another file";
  EXPECT_EXIT(lost.read(onThread), DiedOf{SIGBUS}, "") << "another thread";
  EXPECT_EXIT(whole.read([](auto) { std::raise(SIGBUS); }), DiedOf{SIGBUS}, "") << "sent";
}

}  // namespace
}  // namespace corvana
