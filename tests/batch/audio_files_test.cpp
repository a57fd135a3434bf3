#include "batch/audio_files.hpp"

#include <gtest/gtest.h>

#include "batch/detect_format.hpp"
#include "support/audio_builder.hpp"
#include "support/failures.hpp"
#include "support/temporary_folder.hpp"

namespace corvana {
namespace {

using namespace test;

TEST(DetectFormat, LooksAtTheFirstFourBytes) {
  EXPECT_FALSE(detectFormat(bytes("'RIFF' 00 00 00 00 'what'")));
  EXPECT_TRUE(detectFormat(bytes("'FORM' 00 00 00 00 'ever'")));
  expectRejections(
      {{"empty", {}, "Unsupported format: file is too short"},
       {"11 bytes", bytes("'RIFF' 00 00 00 00 'WAV'"), "Unsupported format: file is too short"},
       {"RIFX", bytes("'RIFX' 00 00 00 00 'WAVE'"), "Unsupported format: neither WAV nor AIFF"},
       {"form", bytes("'form' 00 00 00 00 'AIFF'"), "Unsupported format: neither WAV nor AIFF"},
       {"not ASCII", bytes("D2 C9 C6 C6 00 00 00 00 'WAVE'"),
        "Unsupported format: neither WAV nor AIFF"}},
      [](ByteView file) { detectFormat(file); });
}

TEST(AudioFiles, CollectsInTheGivenOrder) {
  const TemporaryFolder folder;
  for (const char* name :
       {"in/a.WAV", "in/b.aiff", "in/c.txt", "in/.d.wav", "in/AIFF/x.aif", "in/aiff/y.Aifc",
        "in/Kit.band/z.wav", "WAV/sub/w.wave", "WAV/AIFF/v.wav", "single.aif", ".hidden.wav",
        "no extension", ".wav", "name.wav.txt"})
    folder.write(name, "");
  fs::create_symlink("single.aif", folder / "in/link.aif");
  fs::create_symlink("gone.aif", folder / "in/dangling.aif");
  const auto collect = [&](const std::vector<const char*>& names) {
    std::vector<fs::path> urls;
    for (const char* name : names)
      urls.push_back(folder / name);
    std::string found;
    for (const fs::path& file : collectAudioFiles(urls))
      found += file.lexically_relative(folder.path()).native() + "|";
    return found;
  };
  EXPECT_EQ(collect({"in"}), "in/a.WAV|in/aiff/y.Aifc|in/b.aiff|in/dangling.aif|in/link.aif|");
  EXPECT_EQ(collect({"WAV"}), "WAV/sub/w.wave|") << "a given folder is searched whatever its name";
  EXPECT_EQ(collect({"single.aif", "in/dangling.aif", "missing.wav", "no extension", ".hidden.wav",
                     ".wav", "name.wav.txt", "WAV", "single.aif"}),
            "single.aif|.hidden.wav|WAV/sub/w.wave|single.aif|");
  EXPECT_EQ(collect({}), "");
}

TEST(AudioFiles, NamesTheOutput) {
  const struct {
    const char* name;
    std::vector<const char*> existing;
    const char* input;
    bool isAIFF, useSubfolder, overwrite;
    const char* output;
  } cases[] = {
      {"free", {}, "song.wav", false, false, false, "song.aif"},
      {"the last extension goes", {}, "take.01.wav", false, false, false, "take.01.aif"},
      {"taken", {"song.aif"}, "song.wav", false, false, false, "song (1).aif"},
      {"taken twice",
       {"song.aif", "song (1).aif"},
       "song.wav",
       false,
       false,
       false,
       "song (2).aif"},
      {"may be replaced", {"song.aif"}, "song.wav", false, false, true, "song.aif"},
      {"subfolder", {"song.aif"}, "song.wav", false, true, false, "AIFF/song.aif"},
      {"taken in the subfolder",
       {"WAV/song.wav"},
       "song.aiff",
       true,
       true,
       false,
       "WAV/song (1).wav"},
      {"a folder takes a name too",
       {"song.aif/x"},
       "song.wav",
       false,
       false,
       false,
       "song (1).aif"},
      {"the input is no output", {}, "song.aif", false, false, false, "song (1).aif"},
      {"not even to overwrite", {}, "song.aif", false, false, true, "song (1).aif"},
      {"the numbered name may be replaced", {"x (1).wav"}, "x.wav", true, false, true, "x (1).wav"},
      {"upper case is another name", {}, "song.AIF", false, false, false, "song.aif"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const TemporaryFolder folder;
    for (const char* name : c.existing)
      folder.write(name, "");
    const fs::path input = folder.write(c.input, "");
    const auto output = [&](const fs::path& path) {
      return makeOutputURL(path, InputFile(path).identity(), c.isAIFF, c.useSubfolder, c.overwrite);
    };
    EXPECT_EQ(output(input), folder / c.output);
    EXPECT_EQ(output(folder.path() / "." / c.input).lexically_normal(), folder / c.output);
  }
}

TEST(AudioFiles, NoLinkLeadsTheOutputToTheInput) {
  const TemporaryFolder folder;
  const fs::path input = folder.write("song.wav", "");
  fs::create_hard_link(input, folder / "song.aif");
  fs::create_symlink("song.wav", folder / "song (1).aif");
  fs::create_symlink("gone", folder / "song (2).aif");
  const auto output = [&](bool overwrite) {
    return makeOutputURL(input, InputFile(input).identity(), false, false, overwrite).filename();
  };
  EXPECT_EQ(output(true), "song (2).aif");
  EXPECT_EQ(output(false), "song (3).aif") << "a link to nothing takes its name";
}

}  // namespace
}  // namespace corvana
