// The real program with one system call going wrong: three files are converted, the fault hits
// the second.
#include <cerrno>
#include <cstdlib>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <vector>

#include "support/audio_builder.hpp"
#include "support/temporary_folder.hpp"

namespace corvana::test {
namespace {

/// Two blocks of samples; the output has something behind them in both directions.
ByteBuffer instrument(bool isAIFF) {
  constexpr std::uint32_t frames = 1'300'001;
  ByteBuffer samples(frames);
  for (std::size_t i = 0; i < samples.size(); ++i)
    samples[i] = static_cast<std::uint8_t>(i * i >> 7);
  if (isAIFF)
    return aiff({comm({.frames = frames, .bits = 8}),
                 mark({{1, 10, "start"}, {2, 500, "end"}, {3, 9, "cue"}}),
                 inst(AiffInstrument{.baseNote = 60, .sustainLoop = {1, 1, 2}, .releaseLoop = {}}),
                 ssnd(samples)});
  return wav({fmt({.blockAlign = 1, .bits = 8}), test::data(samples),
              smpl(60, 0, {{.start = 10, .end = 499}}), cue({{1, 9}})});
}

enum class Outcome {
  converted,
  failed,   ///< without an output
  partial,  ///< with the beginning of an output
};

struct Case {
  const char* fault;    ///< as CORVANA_FAULT
  Outcome outcome;      ///< of the second file
  const char* message;  ///< "%IN", "%OUT" and "%DIR" stand for the paths
  const char* options = "";
  const char* present = "";  ///< content of a file that already has the output's name
};

// Error numbers are those of Linux, on every machine that it commonly runs on.
static_assert(EPERM == 1 && EINTR == 4 && EIO == 5 && ENXIO == 6 && ENOMEM == 12 && EACCES == 13 &&
              EBUSY == 16 && EEXIST == 17 && ENFILE == 23 && EMFILE == 24 && EFBIG == 27 &&
              ENOSPC == 28 && EROFS == 30 && EDQUOT == 122 && ESTALE == 116);

constexpr const char* writingFailed = "Writing failed: %OUT";
constexpr const char* readError = "Cannot read '%IN': Input/output error";
constexpr const char* subfolder = "--subfolder";
constexpr const char* overwrite = "--overwrite";

const Case cases[] = {
    {"open:1:13", Outcome::failed, "Cannot read '%IN': Permission denied"},
    {"open:1:24", Outcome::failed, "Cannot read '%IN': Too many open files"},
    {"open:1:5", Outcome::failed, readError},
    {"open:1:116", Outcome::failed, "Cannot read '%IN': Stale file handle"},
    {"open:1:4", Outcome::converted, ""},
    {"fstat:1:5", Outcome::failed, readError},
    {"fstat:2:5", Outcome::failed, readError},
    {"fstat:3:116", Outcome::failed, "Cannot read '%IN': Stale file handle"},
    {"fstat:5:5", Outcome::partial, readError},
    {"mmap:1:12", Outcome::failed, "Cannot read '%IN': Cannot allocate memory"},
    {"mmap:1:shrink", Outcome::failed, readError},
    {"create:1:shrink", Outcome::partial, readError},
    {"write:2:shrink", Outcome::partial, readError},
    {"write:3:shrink", Outcome::converted, ""},  // every sample has been read by then

    // The name is taken although the system could not say so: it is not used.
    {"lstat:1:5", Outcome::failed, writingFailed, "", "kept"},
    {"lstat:1:13", Outcome::converted, ""},
    {"stat:1:5", Outcome::converted, "%NUMBERED", overwrite, "kept"},
    {"stat:2:5", Outcome::failed, writingFailed, overwrite, "kept"},
    {"lstat:2:5", Outcome::failed, "Cannot replace '%OUT': Input/output error", overwrite, "kept"},
    {"unlink:1:1", Outcome::failed, "Cannot replace '%OUT': Operation not permitted", overwrite,
     "kept"},
    {"unlink:1:16", Outcome::failed, "Cannot replace '%OUT': Device or resource busy", overwrite,
     "kept"},
    {"unlink:1:30", Outcome::failed, "Cannot replace '%OUT': Read-only file system", overwrite,
     "kept"},

    {"mkdir:1:13", Outcome::failed, "Cannot create '%DIR': Permission denied", subfolder},
    {"mkdir:1:28", Outcome::failed, "Cannot create '%DIR': No space left on device", subfolder},
    {"mkdir:1:30", Outcome::failed, "Cannot create '%DIR': Read-only file system", subfolder},

    {"create:1:13", Outcome::failed, writingFailed},
    {"create:1:23", Outcome::failed, writingFailed},
    {"create:1:28", Outcome::failed, writingFailed},
    {"create:1:30", Outcome::failed, writingFailed},
    {"create:1:122", Outcome::failed, writingFailed},
    {"create:1:4", Outcome::converted, ""},
    {"create:1+:2", Outcome::failed, writingFailed},
    {"create:2:28", Outcome::failed, writingFailed, subfolder},

    // Another program makes a file or a link of this name in between.
    {"create:1:steal", Outcome::failed, writingFailed},
    {"create:2:steal", Outcome::failed, writingFailed, subfolder},
    {"create:2:steal", Outcome::failed, writingFailed, overwrite, "replaced"},
    {"create:1:link:../a/a.%EXT", Outcome::failed, writingFailed},
    {"create:1:link:nowhere", Outcome::failed, writingFailed},

    {"write:1:28", Outcome::partial, writingFailed},
    {"write:2:5", Outcome::partial, writingFailed},
    {"write:2:27", Outcome::partial, writingFailed},
    {"write:3+:28", Outcome::partial, writingFailed},
    {"write:4:122", Outcome::partial, writingFailed},
    {"write:2:4", Outcome::converted, ""},
    {"write:1:short", Outcome::converted, ""},
    {"close:1:5", Outcome::partial, writingFailed},
    {"close:1:28", Outcome::partial, writingFailed},
    {"close:1:122", Outcome::partial, writingFailed},
    {"close:1:4", Outcome::converted, ""},
};

std::string replaceAll(std::string text, const std::string& place, const std::string& value) {
  for (std::size_t at = 0; (at = text.find(place, at)) != std::string::npos; at += value.size())
    text.replace(at, place.size(), value);
  return text;
}

class FaultInjection : public testing::TestWithParam<bool> {};

TEST_P(FaultInjection, CostsOneFileAndNothingElse) {
  const bool isAIFF = GetParam();
  const std::string in = isAIFF ? ".aif" : ".wav";
  const std::string out = isAIFF ? ".wav" : ".aif";
  const ByteBuffer input = instrument(isAIFF);
  ByteBuffer output;  // of the first file, always converted

  for (const Case& testCase : cases) {
    SCOPED_TRACE(std::string(testCase.fault) + " " + testCase.options + " " + testCase.present);
    const TemporaryFolder folder;
    std::string paths;
    for (const std::string name : {"a", "b", "c"})
      paths += " '" + folder.write(name + "/" + name + in, input).native() + "'";
    const bool inSubfolder = testCase.options == subfolder;
    const fs::path outputFolder = folder / "b" / (inSubfolder ? (isAIFF ? "WAV" : "AIFF") : "");
    const fs::path outputPath = outputFolder / ("b" + out);
    const std::string fault = testCase.fault;
    const bool isAboutOutput = fault.starts_with("stat") || fault.starts_with("lstat");
    const std::string present = testCase.present;
    if (!present.empty()) folder.write(outputPath.lexically_relative(folder.path()), present);

    const std::string command =
        "ASAN_OPTIONS=verify_asan_link_order=0 CORVANA_FAULT_BELOW='" +
        (isAboutOutput ? outputPath : folder / "b").native() + "' CORVANA_FAULT='" +
        replaceAll(fault, ".%EXT", in) + "' LD_PRELOAD='" CORVANA_FAULTS_LIBRARY "' '" +
        CORVANA_CLI "' --quiet " + testCase.options + paths + " >'" + (folder / "log").native() +
        "' 2>'" + (folder / "errors").native() + "'";
    const int status = std::system(command.c_str());
    const bool converted = testCase.outcome == Outcome::converted;
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), converted ? 0 : 1);
    EXPECT_EQ(readText(folder / "errors"), "");

    // The log.
    std::istringstream log(readText(folder / "log"));
    std::string first, second, third, rest;
    std::getline(log, first);
    std::getline(log, second);
    std::getline(log, third);
    EXPECT_FALSE(std::getline(log, rest)) << rest;
    EXPECT_TRUE(first.starts_with("a" + in + " => a" + out + "  [8-bit, mono, 44100 Hz")) << first;
    EXPECT_EQ(third, replaceAll(replaceAll(first, "a" + in, "c" + in), "a" + out, "c" + out));
    const std::string message = testCase.message;
    const bool numbered = message == "%NUMBERED";
    if (converted) {
      EXPECT_EQ(second.substr(0, second.find("  [")),
                "b" + in + " => b" + (numbered ? " (1)" : "") + out);
    } else {
      std::string expected = replaceAll(message, "%IN", (folder / "b" / ("b" + in)).native());
      expected = replaceAll(expected, "%OUT", outputPath.native());
      expected = replaceAll(expected, "%DIR", outputFolder.native());
      EXPECT_EQ(second, "✗ b" + in + ": " + expected);
    }

    // The files.
    const bool shrunk = fault.ends_with("shrink");
    EXPECT_TRUE(readFile(folder / "b" / ("b" + in)) == (shrunk ? ByteBuffer() : input));
    for (const std::string name : {"a", "c"})
      EXPECT_TRUE(readFile(folder / name / (name + in)) == input);
    const fs::path firstOutput = inSubfolder ? fs::path(isAIFF ? "WAV" : "AIFF") : fs::path();
    for (const std::string name : {"a", "c"}) {
      const ByteBuffer written = readFile(folder / name / firstOutput / (name + out));
      if (output.empty()) output = written;
      EXPECT_TRUE(written == output);
    }
    const bool stolen = fault.find("steal") != std::string::npos;
    std::size_t fileCount = 3 + 2 + 2;  // inputs, outputs of the others, log and errors
    if (stolen || present == "kept") {
      EXPECT_TRUE(readText(outputPath) == (stolen ? "theirs" : present));
      ++fileCount;
    } else if (fault.find("link:") != std::string::npos) {
      EXPECT_TRUE(fs::is_symlink(outputPath));
      ++fileCount;
    }
    if (testCase.outcome != Outcome::failed) {
      const ByteBuffer written = readFile(numbered ? outputFolder / ("b (1)" + out) : outputPath);
      if (converted) {
        EXPECT_TRUE(written == output);
      } else {
        ASSERT_LE(written.size(), output.size());
        EXPECT_TRUE(std::equal(written.begin(), written.end(), output.begin()));
      }
      ++fileCount;
    }
    EXPECT_EQ(folder.files().size(), fileCount) << testing::PrintToString(folder.files());
  }
}

INSTANTIATE_TEST_SUITE_P(Directions, FaultInjection, testing::Bool());

}  // namespace
}  // namespace corvana::test
