// The real program with one system call going wrong: three files are converted, the fault hits
// the second.
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
  std::string fault;    ///< as CORVANA_FAULT
  Outcome outcome;      ///< of the second file
  std::string message;  ///< "%IN", "%OUT" and "%DIR" stand for paths; or the output's number
  std::string options = {};
  std::string present = {};  ///< content of a file that already has the output's name
};

constexpr const char* writingFailed = "Writing failed: %OUT";
constexpr const char* readError = "Cannot read '%IN': Input/output error";
constexpr const char* subfolder = "--subfolder";
constexpr const char* overwrite = "--overwrite";

const Case cases[] = {
    {"open:1:EACCES", Outcome::failed, "Cannot read '%IN': Permission denied"},
    {"open:1:EMFILE", Outcome::failed, "Cannot read '%IN': Too many open files"},
    {"open:1:EIO", Outcome::failed, readError},
    {"open:1:ESTALE", Outcome::failed, "Cannot read '%IN': Stale file handle"},
    {"open:1:EINTR", Outcome::converted, ""},
    {"fstat:1:EIO", Outcome::failed, readError},
    {"fstat:2:EIO", Outcome::failed, readError},
    {"fstat:3:ESTALE", Outcome::failed, "Cannot read '%IN': Stale file handle"},
    {"fstat:5:EIO", Outcome::partial, readError},
    {"mmap:1:ENOMEM", Outcome::failed, "Cannot read '%IN': Cannot allocate memory"},
    {"mmap:1:shrink", Outcome::failed, readError},
    {"create:1:shrink", Outcome::partial, readError},
    {"write:1:shrink", Outcome::partial, readError},
    {"write:2:shrink", Outcome::converted, ""},  // every sample has been read by then

    // The name is taken although the system could not say so: it is not used.
    {"lstat:1:EIO", Outcome::failed, writingFailed, "", "kept"},
    {"lstat:1:EACCES", Outcome::converted, ""},
    {"stat:1:EIO", Outcome::converted, " (1)", overwrite, "kept"},
    {"stat:2:EIO", Outcome::failed, writingFailed, overwrite, "kept"},
    {"lstat:2:EIO", Outcome::failed, "Cannot replace '%OUT': Input/output error", overwrite,
     "kept"},
    {"unlink:1:EPERM", Outcome::failed, "Cannot replace '%OUT': Operation not permitted", overwrite,
     "kept"},
    {"unlink:1:EBUSY", Outcome::failed, "Cannot replace '%OUT': Device or resource busy", overwrite,
     "kept"},
    {"unlink:1:EROFS", Outcome::failed, "Cannot replace '%OUT': Read-only file system", overwrite,
     "kept"},

    {"mkdir:1:EACCES", Outcome::failed, "Cannot create '%DIR': Permission denied", subfolder},
    {"mkdir:1:ENOSPC", Outcome::failed, "Cannot create '%DIR': No space left on device", subfolder},
    {"mkdir:1:EROFS", Outcome::failed, "Cannot create '%DIR': Read-only file system", subfolder},

    {"create:1:EACCES", Outcome::failed, writingFailed},
    {"create:1:ENFILE", Outcome::failed, writingFailed},
    {"create:1:ENOSPC", Outcome::failed, writingFailed},
    {"create:1:EROFS", Outcome::failed, writingFailed},
    {"create:1:EDQUOT", Outcome::failed, writingFailed},
    {"create:1:EINTR", Outcome::converted, ""},
    {"create:1+:ENOENT", Outcome::failed, writingFailed},
    {"create:2:ENOSPC", Outcome::failed, writingFailed, subfolder},

    // Another program makes a file or a link of this name in between.
    {"create:1:steal", Outcome::failed, writingFailed},
    {"create:2:steal", Outcome::failed, writingFailed, subfolder},
    {"create:2:steal", Outcome::failed, writingFailed, overwrite, "replaced"},
    {"create:1:link:../a/a.%EXT", Outcome::failed, writingFailed},
    {"create:1:link:nowhere", Outcome::failed, writingFailed},

    {"write:1:ENOSPC", Outcome::partial, writingFailed},
    {"write:2:EIO", Outcome::partial, writingFailed},
    {"write:2:EFBIG", Outcome::partial, writingFailed},
    {"write:2+:ENOSPC", Outcome::partial, writingFailed},
    {"write:3:EDQUOT", Outcome::partial, writingFailed},
    {"write:2:EINTR", Outcome::converted, ""},
    {"write:1:short", Outcome::converted, ""},
    {"close:1:EIO", Outcome::partial, writingFailed},
    {"close:1:ENOSPC", Outcome::partial, writingFailed},
    {"close:1:EDQUOT", Outcome::partial, writingFailed},
    {"close:1:EINTR", Outcome::converted, ""},
};

std::string replaceAll(std::string text, const std::string& place, const std::string& value) {
  for (std::size_t at = 0; (at = text.find(place, at)) != std::string::npos; at += value.size())
    text.replace(at, place.size(), value);
  return text;
}

/// The folders a, b and c with an input each; the fault hits b.
class FaultInjection : public testing::TestWithParam<bool> {
 protected:
  const bool isAIFF = GetParam();
  const std::string in = isAIFF ? ".aif" : ".wav";
  const std::string out = isAIFF ? ".wav" : ".aif";
  const ByteBuffer input = instrument(isAIFF);
  ByteBuffer output;  ///< what every complete output holds

  /// Relative to the folder of the test.
  fs::path inputOf(const std::string& name) const { return fs::path(name) / (name + in); }
  fs::path outputOf(const std::string& name, const Case& testCase,
                    const std::string& number = {}) const {
    const fs::path folder = testCase.options == subfolder ? (isAIFF ? "WAV" : "AIFF") : "";
    return name / folder / (name + number + out);
  }

  /// The exit status; the log and what else is said are in the files "log" and "errors".
  int run(const Case& testCase, const TemporaryFolder& folder) const {
    const std::string& fault = testCase.fault;
    // Whether a name exists is also asked of the input.
    const bool isAboutOutput = fault.starts_with("stat") || fault.starts_with("lstat");
    const auto quoted = [&folder](const fs::path& path) {
      return "'" + (folder / path).native() + "' ";
    };
    const std::string command =
        "ASAN_OPTIONS=verify_asan_link_order=0 LD_PRELOAD=" CORVANA_FAULTS_LIBRARY
        " CORVANA_FAULT_BELOW=" +
        quoted(isAboutOutput ? outputOf("b", testCase) : "b") +
        " CORVANA_FAULT=" + replaceAll(fault, ".%EXT", in) + " '" CORVANA_CLI "' --quiet " +
        testCase.options + " " + quoted(inputOf("a")) + quoted(inputOf("b")) +
        quoted(inputOf("c")) + " >" + quoted("log") + "2>" + quoted("errors");
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  void expectLog(const Case& testCase, const TemporaryFolder& folder) const {
    std::vector<std::string> lines;
    std::istringstream log(readText(folder / "log"));
    for (std::string line; std::getline(log, line);)
      lines.push_back(line);
    ASSERT_EQ(lines.size(), 3U);
    const auto success = [this](const std::string& name, const std::string& number = {}) {
      return name + in + " => " + name + number + out + "  [8-bit, mono, 44100 Hz, root key 60";
    };
    EXPECT_TRUE(lines[0].starts_with(success("a"))) << lines[0];
    EXPECT_TRUE(lines[2].starts_with(success("c"))) << lines[2];
    if (testCase.outcome == Outcome::converted) {
      EXPECT_TRUE(lines[1].starts_with(success("b", testCase.message))) << lines[1];
      return;
    }
    const fs::path path = folder / outputOf("b", testCase);
    std::string message = replaceAll(testCase.message, "%IN", (folder / inputOf("b")).native());
    message = replaceAll(message, "%OUT", path.native());
    message = replaceAll(message, "%DIR", path.parent_path().native());
    EXPECT_EQ(lines[1], "✗ b" + in + ": " + message);
  }

  void expectFiles(const Case& testCase, const TemporaryFolder& folder) {
    const std::string& fault = testCase.fault;
    const std::string& present = testCase.present;
    std::size_t fileCount = 3 + 2 + 2;  // inputs, outputs of a and c, log and errors
    for (const std::string name : {"a", "c"}) {
      EXPECT_TRUE(readFile(folder / inputOf(name)) == input);
      const ByteBuffer written = readFile(folder / outputOf(name, testCase));
      if (output.empty()) output = written;
      EXPECT_TRUE(written == output);
    }
    EXPECT_TRUE(readFile(folder / inputOf("b")) ==
                (fault.ends_with("shrink") ? ByteBuffer() : input));
    const fs::path path = folder / outputOf("b", testCase);
    if (fault.ends_with("steal") || present == "kept") {
      EXPECT_EQ(readText(path), fault.ends_with("steal") ? "theirs" : present);
      ++fileCount;
    } else if (fault.find("link:") != std::string::npos) {
      EXPECT_TRUE(fs::is_symlink(path));
      ++fileCount;
    }
    if (testCase.outcome == Outcome::converted) {
      EXPECT_TRUE(readFile(folder / outputOf("b", testCase, testCase.message)) == output);
      ++fileCount;
    } else if (testCase.outcome == Outcome::partial) {
      const ByteBuffer written = readFile(path);
      ASSERT_LE(written.size(), output.size());
      EXPECT_TRUE(std::equal(written.begin(), written.end(), output.begin()));
      ++fileCount;
    }
    EXPECT_EQ(folder.files().size(), fileCount) << testing::PrintToString(folder.files());
  }
};

TEST_P(FaultInjection, CostsOneFileAndNothingElse) {
  for (const Case& testCase : cases) {
    SCOPED_TRACE(testCase.fault + " " + testCase.options + " " + testCase.present);
    const TemporaryFolder folder;
    for (const char* name : {"a", "b", "c"})
      folder.write(inputOf(name), input);
    if (!testCase.present.empty()) folder.write(outputOf("b", testCase), testCase.present);
    EXPECT_EQ(run(testCase, folder), testCase.outcome == Outcome::converted ? 0 : 1);
    EXPECT_EQ(readText(folder / "errors"), "");
    expectLog(testCase, folder);
    expectFiles(testCase, folder);
  }
}

INSTANTIATE_TEST_SUITE_P(Directions, FaultInjection, testing::Bool());

}  // namespace
}  // namespace corvana::test
