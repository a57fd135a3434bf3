#include "platform/files.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/temporary_folder.hpp"

namespace corvana {
namespace {

using namespace test;

std::string messageOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const FileError& error) {
    return error.what();
  }
  return "no error";
}

TEST(InputFile, RefusesWhatIsNoRegularFileWithoutWaiting) {
  const TemporaryFolder folder;
  fs::create_directory(folder / "folder.wav");
  ASSERT_EQ(::mkfifo((folder / "pipe.wav").c_str(), 0600), 0);
  fs::create_symlink("nowhere", folder / "dangling.wav");
  const struct {
    fs::path path;
    const char* reason;
  } cases[] = {
      {folder / "missing.wav", "No such file or directory"},
      {folder / "dangling.wav", "No such file or directory"},
      {folder / "folder.wav", "Is a directory"},
      {folder / "pipe.wav", "Not a regular file"},
      {"/dev/zero", "Not a regular file"},
      {folder / std::string(300, 'x'), "File name too long"},
  };
  for (const auto& [path, reason] : cases)
    EXPECT_EQ(messageOf([&path = path] { const InputFile file(path); }),
              "Cannot read '" + path.native() + "': " + reason);
}

TEST(InputFile, HandsOverTheWholeFile) {
  const TemporaryFolder folder;
  const auto sizeOf = [](const InputFile& file) {
    return file.read([](std::span<const std::uint8_t> content) { return content.size(); });
  };
  EXPECT_EQ(sizeOf(InputFile(folder.write("full", "abc"))), 3U);
  EXPECT_EQ(sizeOf(InputFile(folder.write("empty", ""))), 0U);
}

TEST(MayLeadTo, FollowsLinksAndSparesWhatItCannotTell) {
  const TemporaryFolder folder;
  const FileIdentity file = InputFile(folder.write("file", "abc")).identity();
  folder.write("other", "abc");
  fs::create_hard_link(folder / "file", folder / "hard link");
  fs::create_symlink("file", folder / "link");
  fs::create_symlink("nowhere", folder / "dangling");
  fs::create_symlink("loop", folder / "loop");
  for (const char* name : {"file", "hard link", "link"})
    EXPECT_TRUE(mayLeadTo(folder / name, file)) << name;
  for (const char* name : {"other", "dangling", "loop", "missing", "file/below"})
    EXPECT_FALSE(mayLeadTo(folder / name, file)) << name;
  EXPECT_TRUE(mayLeadTo(folder / std::string(300, 'x'), file)) << "too long to be asked for";
}

TEST(RemoveFile, RemovesFilesAndLinksAndNothingElse) {
  const TemporaryFolder folder;
  folder.write("file", "x");
  folder.write("target", "x");
  fs::create_directory(folder / "folder");
  fs::create_symlink("target", folder / "link");
  fs::create_symlink("folder", folder / "folder link");
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  for (const char* name : {"file", "link", "folder link"}) {
    removeFile(folder / name);
    EXPECT_FALSE(nameExists(folder / name)) << name;
  }
  for (const char* name : {"folder", "pipe", "missing"})
    EXPECT_THROW(removeFile(folder / name), FileError) << name;
  EXPECT_TRUE(nameExists(folder / "target"));
  EXPECT_TRUE(nameExists(folder / "folder"));
  EXPECT_TRUE(nameExists(folder / "pipe"));
}

}  // namespace
}  // namespace corvana
