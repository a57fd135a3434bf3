#include "batch/audio_files.hpp"

#include <algorithm>
#include <gtest/gtest.h>

#include "batch/output_url.hpp"
#include "support/temporary_folder.hpp"

namespace corvana {
namespace {

using namespace test;

fs::path outputOf(const fs::path& input, bool isAIFF, const BatchOptions& options) {
  const std::vector<AudioFile> files = {audioFileAt(input.native())};
  InputFolder folder(files[0]);
  const InputFile file = openFile(input);
  const OutputPlace place = folder.outputPlace(files[0], isAIFF, options);
  return makeOutputURL(folder, place, file, isAIFF, {options, BatchInputs(files)}).url();
}

TEST(AudioFiles, CollectsInTheGivenOrder) {
  const TemporaryFolder folder;
  for (const char* name : {"in/a.WAV",          "in/b.aiff",         "in/B.wave",
                           "in/c.txt",          "in/.d.wav",         "in/.e/e.wav",
                           "in/10.wav",         "in/2.wav",          "in/AIFF/x.aif",
                           "in/aiff/y.Aifc",    "in/Kit.BAND/z.wav", "in/a.b.vst3/z.wav",
                           "in/Kit.appx/z.wav", "in/take.01/z.wav",  "in/\xFF/z.wav",
                           "long/take 2.wav",   "long/take 10.wav",  "long/take 1.wav",
                           "long/take 10.aif",  "long/take.wav",     "long/take 1/take 10.wav",
                           "WAV/sub/w.wave",    "WAV/AIFF/v.wav",    "single.aif",
                           ".hidden.wav",       "no extension",      ".wav",
                           "name.wav.txt"})
    folder.write(name, "");
  fs::create_symlink("../single.aif", folder / "in/link.aif");
  fs::create_symlink("gone.aif", folder / "in/dangling.aif");
  fs::create_symlink("..", folder / "in/folder");
  const auto collect = [&](const std::vector<const char*>& names) {
    std::vector<fs::path> urls(names.size());
    std::transform(names.begin(), names.end(), urls.begin(),
                   [&](const char* name) { return folder / name; });
    std::string found;
    for (const AudioFile& file : collectAudioFiles(urls).files)
      found += fs::path(file.path()).lexically_relative(folder.path()).native() + "|";
    return found;
  };
  EXPECT_EQ(collect({"in"}),
            "in/10.wav|in/2.wav|in/B.wave|in/Kit.appx/z.wav|in/a.WAV|in/aiff/y.Aifc|in/b.aiff|"
            "in/dangling.aif|in/link.aif|in/take.01/z.wav|in/\xFF/z.wav|");
  EXPECT_EQ(collect({"long"}),
            "long/take 1/take 10.wav|long/take 1.wav|long/take 10.aif|long/take 10.wav|"
            "long/take 2.wav|long/take.wav|");
  EXPECT_EQ(collect({"WAV"}), "WAV/sub/w.wave|") << "a given folder is searched whatever its name";
  EXPECT_EQ(collect({"single.aif", "in/dangling.aif", "missing.wav", "no extension", ".hidden.wav",
                     ".wav", "name.wav.txt", "WAV", "single.aif"}),
            "single.aif|.hidden.wav|WAV/sub/w.wave|single.aif|");
  EXPECT_EQ(collect({}), "");
}

TEST(AudioFiles, NamesTheOutput) {
  enum { plain, subfolder, overwrite };
  const struct {
    const char* input;
    int option;
    std::vector<const char*> existing;
    const char* output;
  } cases[] = {
      {"take.01.wav", plain, {}, "take.01.aif"},
      {"song.wav", plain, {"song.aif", "song (1).aif"}, "song (2).aif"},
      {"song.wav", plain, {"song.aif/a folder"}, "song (1).aif"},
      {"song.wav", overwrite, {"song.aif"}, "song.aif"},
      {"song.wav", subfolder, {"song.aif"}, "AIFF/song.aif"},
      {"song.aiff", subfolder, {"WAV/song.wav"}, "WAV/song (1).wav"},
      {"song.aif", plain, {}, "song (1).aif"},  // the input is no output
      {"song.aif", overwrite, {}, "song (1).aif"},
      {"song.aif", overwrite, {"song (1).aif"}, "song (1).aif"},
      {"song.AIF", plain, {}, "song.aif"},
  };
  for (const auto& c : cases) {
    const TemporaryFolder folder;
    for (const char* name : c.existing)
      folder.write(name, "");
    folder.write(c.input, "");
    const bool isAIFF = fs::path(c.output).extension() == ".wav";
    for (const fs::path& path : {folder / c.input, folder.path() / "." / c.input})
      EXPECT_EQ(
          outputOf(path, isAIFF,
                   {.useSubfolder = c.option == subfolder, .overwrite = c.option == overwrite})
              .lexically_normal(),
          folder / c.output);
  }
}

TEST(AudioFiles, FindsInputsThatOutputsMayReplace) {
  const struct {
    std::vector<const char*> inputs;
    const char* beside;       ///< the clash where outputs are written beside the inputs
    const char* inSubfolder;  ///< and where they go into subfolders
  } cases[] = {
      {{"/x/a.wav", "/x/b.aif", "/x/a.aif"}, "a.wav a.aif", ""},
      {{"a.aifc", "a.wav"}, "a.aifc a.wav", ""},
      {{"/x/Kick.AIFF", "/x/KICK.Wav"}, "Kick.AIFF KICK.Wav", ""},
      {{"/x/a.wave", "/x/a.wav", "/x/a.aiff/b.aif"}, "", ""},
      {{"/x/a.wave", "/x/a.aiff"}, "", ""},
      {{"/x/a.wav", "/y/a.aif"}, "", ""},
      {{"/x/AIFF/a.aif", "/x/a.wav"}, "", "a.wav a.aif"},
      {{"a.aiff", "WAV/a.WAV"}, "", "a.aiff a.WAV"},
  };
  for (const auto& c : cases) {
    std::vector<AudioFile> files;
    for (const char* path : c.inputs)
      files.push_back(audioFileAt(path));
    const auto found = [&](bool useSubfolder) {
      const NameClash clash = findNameClashes(files, useSubfolder).first;
      return clash.input.empty() ? "" : clash.input + " " + clash.other;
    };
    EXPECT_EQ(found(false), c.beside) << c.inputs[0];
    EXPECT_EQ(found(true), c.inSubfolder) << c.inputs[0];
  }
}

TEST(AudioFiles, NoLinkLeadsTheOutputToTheInput) {
  const TemporaryFolder folder;
  const fs::path input = folder.write("song.wav", "");
  fs::create_hard_link(input, folder / "song.aif");
  fs::create_symlink("song.wav", folder / "song (1).aif");
  fs::create_symlink("gone", folder / "song (2).aif");
  const auto output = [&](bool overwrite) {
    return outputOf(input, false, {.overwrite = overwrite}).filename();
  };
  fs::create_symlink("song (3).aif", folder / "song (3).aif");
  EXPECT_EQ(output(true), "song (2).aif");
  EXPECT_EQ(output(false), "song (4).aif") << "a link to nothing takes its name";
}

}  // namespace
}  // namespace corvana
