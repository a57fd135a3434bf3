#include "vocabulary/output_file.hpp"

#include <csignal>
#include <functional>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "support/audio_builder.hpp"
#include "support/temporary_folder.hpp"
#include "vocabulary/errors.hpp"
#include "vocabulary/sample_blocks.hpp"

namespace corvana {
namespace {

using namespace test;
using namespace std::string_view_literals;

const ByteBuffer header = text("new");

void create(const fs::path& path, bool replaceExisting, const FileIdentity& input = {}) {
  OutputFile(OutputTarget{path, replaceExisting, input}, header).close();
}

TEST(OutputFile, MakesMissingFoldersAndAppends) {
  const TemporaryFolder folder;
  OutputFile file({folder / "a/b/out.wav", false, {}}, header);
  file.append(text("+more"));
  file.close();
  EXPECT_EQ(readText(folder / "a/b/out.wav"), "new+more");
}

TEST(OutputFile, ReplacesAnExistingFileOrLinkOnlyWhenAllowed) {
  const TemporaryFolder folder;
  const std::string older = "an older and longer content";
  folder.write("out", older);
  folder.write("elsewhere", "keep");
  fs::create_symlink("elsewhere", folder / "link");
  fs::create_symlink("gone", folder / "dangling");
  for (const char* name : {"out", "link", "dangling"}) {
    SCOPED_TRACE(name);
    const fs::path path = folder / name;
    EXPECT_THROW(create(path, false), ConversionError);
    EXPECT_TRUE(name == "out"sv ? readText(path) == older : fs::is_symlink(path));
    create(path, true);
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(path)));
    EXPECT_EQ(readText(path), "new");
  }
  EXPECT_EQ(readText(folder / "elsewhere"), "keep");
  EXPECT_FALSE(nameExists(folder / "gone"));
}

TEST(OutputFile, NeverRemovesTheInputUnderWhateverName) {
  const TemporaryFolder folder;
  const fs::path input = folder.write("input.wav", "samples");
  fs::create_hard_link(input, folder / "hard link");
  fs::create_symlink("input.wav", folder / "symbolic link");
  for (const char* name : {"input.wav", "hard link", "symbolic link"}) {
    EXPECT_THROW(create(folder / name, true, InputFile(input).identity()), ConversionError) << name;
    EXPECT_EQ(readText(folder / name), "samples") << name;
  }
}

TEST(OutputFile, NeverRemovesAFolderOrSpecialFile) {
  const TemporaryFolder folder;
  fs::create_directory(folder / "folder");
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  for (const char* name : {"folder", "pipe"}) {
    EXPECT_THROW(create(folder / name, true), FileError) << name;
    EXPECT_TRUE(nameExists(folder / name)) << name;
  }
}

TEST(OutputFile, NamesWhatCannotBeCreated) {
  const TemporaryFolder folder;
  folder.write("file", "x");
  EXPECT_THROW(create(folder / "file/sub/out.wav", true), FileError) << "the folder";
  const fs::path tooLong = folder / std::string(300, 'x');
  try {
    create(tooLong, true);
    FAIL();
  } catch (const ConversionError& error) {
    EXPECT_EQ(error.errorDescription(), "Writing failed: " + tooLong.native());
  }
}

TEST(OutputFile, AFailedWriteIsReportedAndLeavesThePart) {
  const TemporaryFolder folder;
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  const rlimit small{1000, before.rlim_max};
  std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  OutputFile file({folder / "out", false, {}}, header);
  EXPECT_THROW(file.append(ByteBuffer(2000)), ConversionError);
  ::setrlimit(RLIMIT_FSIZE, &before);
  EXPECT_EQ(fs::file_size(folder / "out"), 1000U);
}

TEST(SampleBlocks, HoldAtMostOneMebibyteOfSourceButAtLeastOneFrame) {
  const struct {
    const char* name;
    SampleLayout layout;
    std::vector<std::size_t> blocks;  ///< output bytes
    std::vector<double> progress;
  } cases[] = {
      {"no frames", {0, 4, 4}, {}, {}},
      {"less than a block", {3, 2, 2}, {6}, {1}},
      {"exactly one block", {262144, 4, 3}, {786432}, {1}},
      {"one frame more", {262145, 4, 4}, {1048576, 4}, {262144 / 262145.0, 1}},
      {"frames that do not divide a block",
       {349526, 9, 9},
       {1048572, 1048572, 1048572, 18},
       {116508 / 349526.0, 233016 / 349526.0, 349524 / 349526.0, 1}},
      {"frames above a block", {2, 2'000'000, 1'500'000}, {1'500'000, 1'500'000}, {0.5, 1}},
  };
  const TemporaryFolder folder;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    OutputFile file({folder / c.name, false, {}}, {});
    std::vector<std::size_t> blocks;
    std::vector<double> progress;
    std::uint64_t expectedFirst = 0;
    writeSampleBlocks(
        c.layout,
        [&](std::uint64_t firstFrame, std::span<std::uint8_t> block) {
          EXPECT_EQ(firstFrame, expectedFirst);
          expectedFirst += block.size() / c.layout.outputFrameSize;
          blocks.push_back(block.size());
        },
        file, [&](double fraction) { progress.push_back(fraction); });
    EXPECT_EQ(blocks, c.blocks);
    EXPECT_EQ(progress, c.progress);
  }
}

}  // namespace
}  // namespace corvana
