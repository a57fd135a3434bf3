#include "platform/files.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/folders.hpp"
#include "support/temporary_folder.hpp"

namespace corvana {
namespace {

using namespace test;

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
      const InputFile file(path);
      ADD_FAILURE() << path;
    } catch (const FileError& error) {
      EXPECT_EQ(error.what(), "Cannot read '" + path.native() + "': " + reason);
    }
  EXPECT_EQ(InputFile(folder.write("empty", "")).read([](auto all) { return all.size(); }), 0U);
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

std::vector<std::string> found(const TemporaryFolder& folder) {
  std::vector<std::string> items;
  searchFolder(folder.path(),
               {[&](std::string_view path) {
                  items.push_back(fs::path(path).lexically_relative(folder.path()).native());
                },
                [](std::string_view name) { return name == "skip" ? Descend::no : Descend::yes; }});
  return items;
}

TEST(SearchFolder, GoesDeepInByteOrderAndLeavesOutWhatIsHiddenPackedOrLinked) {
  const TemporaryFolder folder;
  for (const char* name :
       {"b.wav", "a/2", "a/10", "a/sub/x", "a.wav", "B.wav", ".hidden", "a/.h", ".folder/x",
        "Song.logicx/x", "Old.BAND/x", "take.01/x", "skip/x", "a.b.Vst3/x", "Kit.appx/y", "\xFF/z"})
    folder.write(name, "");
  fs::create_symlink("a", folder / "link to folder");
  fs::create_symlink("..", folder / "loop");
  EXPECT_EQ(found(folder),
            (std::vector<std::string>{"B.wav", "Kit.appx/y", "a/10", "a/2", "a/sub/x", "a.wav",
                                      "b.wav", "link to folder", "loop", "take.01/x", "\xFF/z"}));
}

TEST(SearchFolder, StepsOverUnreadableFolders) {
  if (::geteuid() == 0) GTEST_SKIP() << "root reads everything";
  const TemporaryFolder folder;
  folder.write("closed/x", "");
  folder.write("open/y", "");
  fs::permissions(folder / "closed", fs::perms::none);
  EXPECT_EQ(found(folder), std::vector<std::string>{"open/y"});
  fs::permissions(folder / "closed", fs::perms::owner_all);
}

}  // namespace
}  // namespace corvana
