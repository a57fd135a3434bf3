// What leads where: names, links and folders that change hands.
#include "platform/folder.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include "support/temporary_folder.hpp"

namespace corvana {
namespace {

using namespace test;

TEST(Folder, TakesForOneFileWhatMayBeOne) {
  const TemporaryFolder temporary;
  temporary.write("song.aif", "1234");
  fs::create_symlink("song.aif", temporary / "link");
  const Folder folder(temporary.path());
  const FileIdentity file = openFile(temporary / "song.aif").identity();
  FileIdentity renumbered = file;  // as some file systems do between two looks
  ++renumbered.inode;
  const auto with = [&](const auto& change) {
    FileIdentity changed = renumbered;
    change(changed);
    return changed;
  };
  const struct {
    const char* name;
    FileIdentity input;
    bool mayLead;
  } cases[] = {
      {"song.aif", file, true},
      {"link", file, true},
      {"song.aif", with([](FileIdentity& i) { i.name = "SONG.AIF"; }), true},
      {"song.aif", with([](FileIdentity& i) { i.name = "S\xC3\x96ng.aif"; }), false},
      {"song.aif", with([](FileIdentity& i) { i.name = "song.wav"; }), false},
      {"song.aif", with([](FileIdentity& i) { ++i.size; }), false},
      {"song.aif", with([](FileIdentity& i) { ++i.modified; }), false},
      {"song.aif", with([](FileIdentity& i) { ++i.device; }), false},
      {"link", renumbered, false},
      {"none", file, false},
  };
  for (const auto& c : cases)
    EXPECT_EQ(folder.mayLeadTo(c.name, c.input), c.mayLead) << c.name << " " << c.input.name;
}

TEST(Folder, FollowsNoLinkOfSomebodyElse) {
  const TemporaryFolder temporary;
  temporary.write("victim/sub/file", "");
  fs::create_directory(temporary / "samples");
  fs::create_symlink("../victim", temporary / "samples/own");
  fs::create_symlink("../victim", temporary / "samples/foreign");
  const Folder samples(temporary / "samples");
  EXPECT_TRUE(samples.open("own").nameExists("sub"));
  EXPECT_THROW(samples.open("gone"), std::system_error);
  if (::lchown((temporary / "samples/foreign").c_str(), 12345, 12345) != 0)
    GTEST_SKIP() << "only root can give a link away";
  EXPECT_THROW(samples.open("foreign"), std::system_error);
  EXPECT_THROW(samples.make("foreign"), FileError);
  const std::string found = (temporary / "samples/foreign/sub").native();
  const std::size_t root = (temporary / "samples").native().size();
  EXPECT_THROW(openFoundFolder(found, root), std::system_error);
  EXPECT_TRUE(openFoundFolder(found, found.size()).nameExists("file")) << "the user has named it";
}

}  // namespace
}  // namespace corvana
