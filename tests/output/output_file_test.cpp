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

TEST(OutputFile, ReplacesAFileOrLinkWhenAllowedButNeverTheInputOrAnythingElse) {
  const TemporaryFolder temporary;
  const fs::path input = temporary.write("input", "samples");
  temporary.write("older", "an older and longer content");
  temporary.write("elsewhere", "keep");
  fs::create_symlink("elsewhere", temporary / "link");
  fs::create_symlink("gone", temporary / "dangling");
  fs::create_hard_link(input, temporary / "hard link");
  fs::create_symlink("input", temporary / "symbolic link");
  fs::create_directory(temporary / "folder");
  ASSERT_EQ(::mkfifo((temporary / "pipe").c_str(), 0600), 0);
  const Folder folder(temporary.path());
  const auto create = [&](const char* name, bool replaces) {
    OutputFile file({.folder = folder,
                     .name = name,
                     .replaceExisting = replaces,
                     .input = openFile(input).identity(),
                     .permissions = 0600});
    file.append(text("new"));
    file.close();
  };
  for (const char* name : {"older", "link", "dangling"}) {
    EXPECT_THROW(create(name, false), ConversionError) << name;
    create(name, true);
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(temporary / name)));
    EXPECT_EQ(fs::status(temporary / name).permissions(), fs::perms(0600));
    EXPECT_EQ(readText(temporary / name), "new");
  }
  for (const char* name : {"input", "hard link", "symbolic link", "folder", "pipe"}) {
    EXPECT_ANY_THROW(create(name, true)) << name;
    EXPECT_TRUE(fs::exists(temporary / name)) << name;
  }
  EXPECT_EQ(readText(input), "samples");
  EXPECT_EQ(readText(temporary / "elsewhere"), "keep");
  const OutputTarget below{.folder = folder, .missingFolders = "input/sub", .name = "out"};
  EXPECT_THROW(OutputFile file(below), FileError) << "no folder can be made";
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

TEST(ConvertFile, RefusesMoreSoundThanAnAiffFileHolds) {
  const TemporaryFolder folder;
  const fs::path big =
      folder.write("b", wav({fmt({.blockAlign = 1, .bits = 8}), bytes("'data' FF FF FF FF")}));
  const auto planFrames = [&](std::uint64_t frames) {
    fs::resize_file(big, 44 + frames);
    const InputFile input = openFile(big);
    return input.read([](ByteView file) { return planWAVToAIFF(file); }).samples.frameCount;
  };
  constexpr std::uint64_t maxFrames = 4294966270 - 8;
  EXPECT_EQ(errorOf([&] { planFrames(maxFrames + 1); }), "The file is too large (max. 4 GB).");
  EXPECT_EQ(planFrames(maxFrames), maxFrames);
}

}  // namespace
}  // namespace corvana
