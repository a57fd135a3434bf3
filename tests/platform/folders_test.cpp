#include "platform/folders.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include "support/temporary_folder.hpp"

namespace corvana {
namespace {

using namespace test;

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
        "Song.logicx/x", "Old.BAND/x", "take.01/x", "skip/x", "skip.app/y", "\xFF/z"})
    folder.write(name, "");
  fs::create_directory(folder / "empty");
  fs::create_symlink("a", folder / "link to folder");
  fs::create_symlink("..", folder / "loop");
  fs::create_symlink("gone", folder / "dangling");
  EXPECT_EQ(found(folder), (std::vector<std::string>{"B.wav", "a/10", "a/2", "a/sub/x", "a.wav",
                                                     "b.wav", "dangling", "link to folder", "loop",
                                                     "take.01/x", "\xFF/z"}));
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

TEST(IsPackageName, KnowsBundlesInAnyCase) {
  for (const char* name : {"Sampler.app", "Song.logicx", "Synth.VST3", "a.b.Component"})
    EXPECT_TRUE(isPackageName(name)) << name;
  for (const char* name : {"app", ".app", "Kit.appx", "take.01", "Kit.", ""})
    EXPECT_FALSE(isPackageName(name)) << name;
}

}  // namespace
}  // namespace corvana
