// The real program with one system call going wrong: three files are converted, the fault hits
// the second.
#include <cstdlib>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/wait.h>

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
    return aiff({comm({.frames = frames, .bits = 8}), mark({{1, 10, ""}, {2, 500, ""}, {3, 9, ""}}),
                 inst(AiffInstrument{60, 0, 0, 0, 0, 0, 0, {1, 1, 2}, {}}), ssnd(samples)});
  return wav({fmt({.blockAlign = 1, .bits = 8}), test::data(samples),
              smpl(60, 0, {{0, 0, 10, 499}}), cue({{1, 9}})});
}

enum Outcome {
  converted,
  failed,   ///< without an output
  partial,  ///< with the beginning of an output
};

struct Case {
  std::string fault;    ///< as CORVANA_FAULT
  Outcome outcome;      ///< of the second file
  std::string message;  ///< "%IN", "%OUT" and "%DIR" stand for paths; or the output's number
  std::string option = {};
  std::string present = {};  ///< content of a file that already has the output's name
};

constexpr const char* unwritten = "Writing failed: %OUT";
constexpr const char* unread = "Cannot read '%IN': Input/output error";
constexpr const char* subfolder = "--subfolder";
constexpr const char* overwrite = "--overwrite";
constexpr const char* safe = "--safe";
constexpr const char* safeOverwrite = "--safe --overwrite";

const Case cases[] = {
    {"folder:1:EACCES", failed, "Cannot read '%IN': Permission denied"},
    {"open:1:EACCES", failed, "Cannot read '%IN': Permission denied"},
    {"open:1:EMFILE", failed, "Cannot read '%IN': Too many open files"},
    {"open:1:EINTR", converted, ""},
    {"open:1:EAGAIN", converted, ""},  // another program holds a lease
    {"fstat:1:EIO", failed, unread},
    {"fstat:3:ESTALE", failed, "Cannot read '%IN': Stale file handle"},
    {"fstat:5:EIO", partial, unread},
    {"mmap:1:ENOMEM", failed, "Cannot read '%IN': Cannot allocate memory"},
    {"mmap:1:shrink", failed, unread},
    {"create:1:shrink", partial, unread},
    {"write:1:shrink", partial, unread},
    {"write:2:shrink", converted, ""},  // every sample has been read by then

    // The name is taken although the system could not say so: it is not used.
    {"lstat:1:EIO", failed, unwritten, "", "kept"},
    {"stat:1:EIO", converted, " (1)", overwrite, "kept"},
    {"stat:2:EIO", failed, unwritten, overwrite, "kept"},
    {"lstat:2:EIO", failed, "Cannot replace '%OUT': Input/output error", overwrite, "kept"},
    {"unlink:1:EROFS", failed, "Cannot replace '%OUT': Read-only file system", overwrite, "kept"},
    {"mkdir:1:ENOSPC", failed, "Cannot create '%DIR': No space left on device", subfolder},
    {"create:1:EACCES", failed, unwritten},
    {"create:1:EINTR", converted, ""},
    {"create:1+:ENOENT", failed, unwritten},
    {"folder:3:EACCES", failed, "Cannot create '%DIR': Permission denied", subfolder},

    // Another program makes a file or a link of this name in between.
    {"create:1:steal", failed, unwritten},
    {"create:2:steal", failed, unwritten, overwrite, "replaced"},
    {"create:1:link:../a/a.%EXT", failed, unwritten},
    {"create:1:link:nowhere", failed, unwritten},

    {"write:1:ENOSPC", partial, unwritten},
    {"write:2:EFBIG", partial, unwritten},
    {"write:2+:ENOSPC", partial, unwritten},
    {"write:3:EDQUOT", partial, unwritten},
    {"write:2:EINTR", converted, ""},
    {"write:1:short", converted, ""},
    {"close:1:EIO", partial, unwritten},
    {"close:1:EINTR", converted, ""},

    // The name is given to a complete file or to none.
    {"write:2:ENOSPC", failed, unwritten, safe},
    {"write:1:ENOSPC", failed, unwritten, safeOverwrite, "kept"},
    {"fsync:1:EIO", failed, unwritten, safe},
    {"close:1:EIO", failed, unwritten, safeOverwrite, "kept"},
    {"rename:1:EINVAL", converted, "", safe},
    {"rename:1:EIO", failed, unwritten, safe},
    {"rename:1:steal", failed, unwritten, safe},
    {"replace:1:EIO", failed, "Cannot replace '%OUT': Input/output error", safeOverwrite, "kept"},
    {"fsync:2:EIO", partial, unwritten, safe},
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

  void check(const Case& c) {
    const TemporaryFolder folder;
    const std::string outputFolder = c.option == subfolder ? (isAIFF ? "/WAV/" : "/AIFF/") : "/";
    const auto inputOf = [&](const std::string& name) { return folder / (name + "/" + name + in); };
    const auto outputOf = [&](const std::string& name, const std::string& number = {}) {
      return folder / (name + outputFolder + name + number + out);
    };
    for (const char* name : {"a", "b", "c"})
      folder.write(inputOf(name), input);
    if (!c.present.empty()) folder.write(outputOf("b"), c.present);

    // Whether a name exists is also asked of the input.
    const bool asksForName = c.fault.starts_with("stat") || c.fault.starts_with("lstat");
    const std::string command =
        "cd '" + folder.path().native() +
        "' && ASAN_OPTIONS=verify_asan_link_order=0 LD_PRELOAD=" + CORVANA_FAULTS_LIBRARY +
        " CORVANA_FAULT=" + replaceAll(c.fault, ".%EXT", in) +
        " CORVANA_FAULT_BELOW=" + (asksForName ? outputOf("b") : folder / "b").native() +
        " '" CORVANA_CLI "' --quiet " + c.option + " " + inputOf("a").native() + " " +
        inputOf("b").native() + " " + inputOf("c").native() + " >log 2>errors";
    const int status = std::system(command.c_str());
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), c.outcome == converted ? 0 : 1);
    const std::string reason = "corvana-cli: " + outputOf("b").native() + ": ";
    EXPECT_TRUE(c.message == unwritten ? readText(folder / "errors").starts_with(reason)
                                       : readText(folder / "errors").empty());

    const auto success = [&](const std::string& name, const std::string& number = {}) {
      return name + in + " => " + name + number + out + "  [8-bit, mono, 44100 Hz, root key 60, ";
    };
    std::string said =
        c.outcome == converted ? success("b", c.message) : "✗ b" + in + ": " + c.message;
    said = replaceAll(said, "%IN", inputOf("b").native());
    said = replaceAll(said, "%OUT", outputOf("b").native());
    said = replaceAll(said, "%DIR", outputOf("b").parent_path().native());
    std::istringstream log(readText(folder / "log"));
    std::string entry;
    for (const std::string& expected : {success("a"), said, success("c")}) {
      std::getline(log, entry);
      EXPECT_TRUE(entry.starts_with(expected)) << entry << "\nexpected: " << expected;
    }
    EXPECT_FALSE(std::getline(log, entry)) << entry;

    std::size_t fileCount = 3 + 2 + 2;  // inputs, outputs of a and c, log and errors
    for (const std::string name : {"a", "c"}) {
      EXPECT_TRUE(readFile(inputOf(name)) == input);
      if (output.empty()) output = readFile(outputOf(name));
      EXPECT_TRUE(readFile(outputOf(name)) == output);
    }
    EXPECT_TRUE(readFile(inputOf("b")) == (c.fault.ends_with("shrink") ? ByteBuffer() : input));
    if (c.fault.ends_with("steal") || c.present == "kept") {
      EXPECT_EQ(readText(outputOf("b")), c.present == "kept" ? "kept" : "theirs");
      ++fileCount;
    } else if (c.fault.find("link:") != std::string::npos) {
      EXPECT_TRUE(fs::is_symlink(outputOf("b")));
      ++fileCount;
    }
    if (c.outcome != failed) {
      const ByteBuffer written =
          readFile(outputOf("b", c.outcome == converted ? c.message : std::string()));
      ASSERT_TRUE(c.outcome == converted ? written.size() == output.size()
                                         : written.size() <= output.size());
      EXPECT_TRUE(std::equal(written.begin(), written.end(), output.begin()));
      ++fileCount;
    }
    EXPECT_EQ(folder.files().size(), fileCount) << testing::PrintToString(folder.files());
  }
};

TEST_P(FaultInjection, CostsOneFileAndNothingElse) {
  for (const Case& c : cases) {
    SCOPED_TRACE(c.fault + " " + c.option + " " + c.present);
    check(c);
  }
}

/// What the search could not read is named, and the rest converted.
TEST(FaultInjectionSearch, NamesWhatItCouldNotSearch) {
  const struct {
    const char* fault;
    int status;
    const char *log, *errors;
  } searches[] = {
      {"folder:1:EACCES", 1, "a.wav|c.wav|", "%DIR: Permission denied\n"},
      {"list:1:ENOMEM", 1, "a.wav|c.wav|", "%DIR: Cannot allocate memory\n"},
      {"readdir:1:EIO", 1, "a.wav|c.wav|", "%DIR: Input/output error\n"},
      {"readdir:1+:untyped", 0, "a.wav|b.wav|d.wav|c.wav|", ""},
  };
  for (const auto& c : searches) {
    SCOPED_TRACE(c.fault);
    const TemporaryFolder folder;
    const ByteBuffer input = wav({fmt({}), test::data({1, 2})});
    for (const char* name : {"in/a.wav", "in/b/b.wav", "in/b/d/d.wav", "in/c.wav"})
      folder.write(name, input);
    const std::string below = (folder / "in/b").native();
    const std::string command =
        "cd '" + folder.path().native() +
        "' && ASAN_OPTIONS=verify_asan_link_order=0 LD_PRELOAD=" + CORVANA_FAULTS_LIBRARY +
        " CORVANA_FAULT=" + c.fault + " CORVANA_FAULT_BELOW=" + below +
        " '" CORVANA_CLI "' --quiet " + (folder / "in").native() + " >log 2>errors";
    const int status = std::system(command.c_str());
    EXPECT_EQ(WEXITSTATUS(status), c.status);
    std::istringstream log(readText(folder / "log"));
    std::string names;
    for (std::string entry; std::getline(log, entry);)
      names += entry.substr(0, entry.find(' ')) + "|";
    EXPECT_EQ(names, c.log);
    const std::string said = c.errors[0] == 0 ? "" : std::string("corvana-cli: ") + c.errors;
    EXPECT_EQ(readText(folder / "errors"), replaceAll(said, "%DIR", below + "/"));
  }
}

INSTANTIATE_TEST_SUITE_P(Directions, FaultInjection, testing::Bool());

}  // namespace
}  // namespace corvana::test
