#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/audio_builder.hpp"
#include "support/temporary_folder.hpp"
#include "vocabulary/errors.hpp"
#include "vocabulary/output_file.hpp"
#include "vocabulary/summary.hpp"

namespace corvana {
namespace {

using namespace test;

void create(const fs::path& path, bool replaceExisting, const FileIdentity& input = {}) {
  OutputFile(OutputTarget{path, replaceExisting, input}, text("new")).close();
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

TEST(Summary, NamesWhatIsThere) {
  EXPECT_EQ(makeSummary(16, 2, 44100, {}, 3, 0, 0, 0), "16-bit, stereo, 44100 Hz");
  EXPECT_EQ(makeSummary(8, 6, 4294967295, 61, -12, 0, 0, 3),
            "8-bit, 6 channels, 4294967295 Hz, root key 61 (-12 ct), 3 cue points");
  EXPECT_EQ(makeSummary(24, 1, 48000, 0, 7, 1, 1, 1),
            "24-bit, mono, 48000 Hz, root key 0 (+7 ct), 1 loop, 1 marker, 1 cue point");
  EXPECT_EQ(makeSummary(24, 0, 1, 60, 0, 2, 4, 0),
            "24-bit, 0 channels, 1 Hz, root key 60, 2 loops, 4 markers");
}

}  // namespace
}  // namespace corvana
