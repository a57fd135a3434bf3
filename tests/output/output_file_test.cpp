#include "output/output_file.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "convert/plan_wav_to_aiff.hpp"
#include "support/audio_builder.hpp"
#include "support/conversion.hpp"
#include "support/temporary_folder.hpp"

namespace corvana {
namespace {

using namespace test;

void create(const fs::path& path, bool replaceExisting, const FileIdentity& input = {},
            bool safe = false) {
  const Folder folder(path.parent_path());
  OutputFile file({.folder = folder,
                   .name = path.filename().native(),
                   .replaceExisting = replaceExisting,
                   .safe = safe,
                   .input = input});
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
    EXPECT_THROW(create(folder / name, true, openFile(input).identity()), ConversionError) << name;
    EXPECT_EQ(readText(folder / name), "samples") << name;
  }
  fs::create_directory(folder / "folder");
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  for (const char* name : {"folder", "pipe"}) {
    EXPECT_THROW(create(folder / name, true), FileError) << name;
    EXPECT_TRUE(fs::exists(folder / name)) << name;
  }
  const Folder open(folder.path());
  const OutputTarget below{.folder = open, .missingFolders = "input.wav/sub", .name = "out.wav"};
  EXPECT_THROW(OutputFile file(below), FileError) << "no folder can be made";
}

TEST(OutputFile, ASafeOneHasItsNameWhenItIsCompleteOrNever) {
  const TemporaryFolder folder;
  const fs::path older = folder.write("out", "older");
  EXPECT_THROW(create(older, false, {}, true), ConversionError);
  {
    const Folder open(folder.path());
    OutputFile file({.folder = open, .name = "out", .replaceExisting = true, .safe = true});
    file.append(ByteBuffer(10'000));
    EXPECT_EQ(folder.files().size(), 2U);
    EXPECT_EQ(folder.files()[0][0], '.') << "no search finds it";
  }
  EXPECT_EQ(folder.files(), std::vector<std::string>{"out"}) << "given up, removed";
  EXPECT_EQ(readText(older), "older");
  create(older, true, {}, true);
  EXPECT_EQ(readText(older), "new");
  EXPECT_EQ(folder.files().size(), 1U);
}

TEST(OutputFile, ReservesRoomInStepsAndGivesItBack) {
  const TemporaryFolder folder;
  const auto roomOf = [&] {
    struct stat status {};
    ::stat((folder / "out").c_str(), &status);
    return status.st_blocks * 512;
  };
  {
    const Folder open(folder.path());
    OutputFile file({.folder = open, .name = "out"});
    file.reserve(1'000'000'000);
    file.append(ByteBuffer(1'048'576));
    if (roomOf() <= 1'048'576 + 65'536) GTEST_SKIP() << "this file system reserves nothing";
    EXPECT_LE(roomOf(), 65 << 20);
  }
  EXPECT_LE(roomOf(), 1'048'576 + 65'536);
}

TEST(OutputFile, KeepsWhatIsPrivatePrivate) {
  const TemporaryFolder folder;
  const Folder open(folder.path());
  OutputFile({.folder = open, .name = "out", .permissions = 0600}).close();
  EXPECT_EQ(fs::status(folder / "out").permissions(), fs::perms(0600));
}

TEST(ConvertFile, RefusesMoreSoundThanAnAiffFileHolds) {
  const TemporaryFolder folder;
  const fs::path big =
      folder.write("b", wav({fmt({.blockAlign = 1, .bits = 8}), bytes("'data' FF FF FF FF")}));
  const auto planFrames = [&](std::uint64_t frames) {
    fs::resize_file(big, 44 + frames);
    const InputFile input = openFile(big);
    return input.read(planWAVToAIFF).samples.frameCount;
  };
  constexpr std::uint64_t maxFrames = 4294966270 - 8;
  EXPECT_EQ(errorOf([&] { planFrames(maxFrames + 1); }), "The file is too large (max. 4 GB).");
  EXPECT_EQ(planFrames(maxFrames), maxFrames);
}

}  // namespace
}  // namespace corvana
