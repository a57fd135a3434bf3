#include "output/output_file.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/audio_builder.hpp"
#include "support/temporary_folder.hpp"
#include "vocabulary/errors.hpp"

namespace corvana {
namespace {

using namespace test;

void create(const fs::path& path, bool replaceExisting, const FileIdentity& input = {}) {
  OutputFile file(OutputTarget{path, replaceExisting, input});
  file.append(text("new"));
  file.close();
}

TEST(OutputFile, ReplacesAnExistingFileOrLinkOnlyWhenAllowed) {
  const TemporaryFolder folder;
  folder.write("out", "an older and longer content");
  folder.write("elsewhere", "keep");
  fs::create_symlink("elsewhere", folder / "link");
  fs::create_symlink("gone", folder / "dangling");
  for (const char* name : {"out", "link", "dangling"}) {
    SCOPED_TRACE(name);
    EXPECT_THROW(create(folder / name, false), ConversionError);
    create(folder / name, true);
    EXPECT_FALSE(fs::is_symlink(folder / name));
    EXPECT_EQ(readText(folder / name), "new");
  }
  EXPECT_EQ(readText(folder / "elsewhere"), "keep");
  EXPECT_FALSE(fs::exists(folder / "gone"));
}

TEST(OutputFile, NeverRemovesTheInputAFolderOrASpecialFile) {
  const TemporaryFolder folder;
  const fs::path input = folder.write("input.wav", "samples");
  fs::create_hard_link(input, folder / "hard link");
  fs::create_symlink("input.wav", folder / "symbolic link");
  for (const char* name : {"input.wav", "hard link", "symbolic link"}) {
    EXPECT_THROW(create(folder / name, true, InputFile(input).identity()), ConversionError) << name;
    EXPECT_EQ(readText(folder / name), "samples") << name;
  }
  fs::create_directory(folder / "folder");
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  for (const char* name : {"folder", "pipe"}) {
    EXPECT_THROW(create(folder / name, true), FileError) << name;
    EXPECT_TRUE(fs::exists(folder / name)) << name;
  }
  EXPECT_THROW(create(input / "sub/out.wav", true), FileError) << "no folder can be made";
}

}  // namespace
}  // namespace corvana
