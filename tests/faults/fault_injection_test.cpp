// The real program with one system call going wrong: three files are converted, the fault hits
// the second.
#include <gtest/gtest.h>
#include <regex>

#include "support/audio_builder.hpp"
#include "support/program.hpp"

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

enum Ending {
  converted,
  failed,   ///< without an output
  partial,  ///< with the beginning of an output
};

struct Case {
  std::string fault;    ///< as CORVANA_FAULT
  Ending ending;        ///< of the second file
  std::string message;  ///< "%IN", "%OUT" and "%DIR" stand for paths; or the output's number
  std::vector<std::string> options = {};
  std::string present = {};  ///< content of a file that already has the output's name
};

constexpr const char* unwritten = "Writing failed: %OUT";
constexpr const char* unread = "Cannot read '%IN': Input/output error";
const std::vector<std::string> subfolder = {"--subfolder"};
const std::vector<std::string> overwrite = {"--overwrite"};
const std::vector<std::string> safe = {"--safe"};
const std::vector<std::string> verify = {"--verify"};
const std::vector<std::string> times = {"--preserve-times"};
const std::vector<std::string> verifyTimes = {"--preserve-times", "--verify"};
const std::vector<std::string> safeOverwrite = {"--safe", "--overwrite"};

const Case cases[] = {
    {"folder:1:EACCES", failed, "Cannot read '%IN': Permission denied"},
    {"open:1:EACCES", failed, "Cannot read '%IN': Permission denied"},
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
    {"lstat:1:EIO", converted, " (1)", {}, "kept"},
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
    {"create:1:steal", converted, " (1)"},
    {"create:2:steal", failed, unwritten, overwrite, "replaced"},
    {"create:1:link:../a/a.%EXT", converted, " (1)"},
    {"create:1:link:nowhere", converted, " (1)"},

    {"write:1:ENOSPC", partial, unwritten},
    {"write:2+:ENOSPC", partial, unwritten},
    {"write:3:EDQUOT", partial, unwritten},
    {"write:2:EINTR", converted, ""},
    {"write:1:short", converted, ""},
    {"close:1:EIO", partial, unwritten},
    {"close:1:EINTR", converted, ""},

    // The name is given to a complete file or to none.
    {"write:1:short", converted, "", safeOverwrite, "replaced"},
    {"write:2:ENOSPC", failed, unwritten, safe},
    {"write:1:ENOSPC", failed, unwritten, safeOverwrite, "kept"},
    {"fsync:1:EIO", failed, unwritten, safe},
    {"close:1:EIO", failed, unwritten, safeOverwrite, "kept"},
#if !CORVANA_POSIX_ONLY  // there is another way
    {"rename:1:EINVAL", converted, "", safe},
#endif
    {"rename:1:EIO", failed, unwritten, safe},
    {"rename:1:steal", converted, " (1)", safe},
    {"replace:1:EIO", failed, "Cannot replace '%OUT': Input/output error", safeOverwrite, "kept"},
    {"fsync:2:EIO", partial, unwritten, safe},

    // The output is read back, with the input still there to be compared.
    {"open:2:EACCES", partial, "Cannot read '%OUT': Permission denied", verify},
    {"open:2:shrink", partial, unread, verify},

    // Times that cannot be set cost a warning, a file of somebody else's nothing.
    {"times:1:EPERM", converted, "", times},
    {"times:2:EROFS", converted, "", verifyTimes},
#if !CORVANA_POSIX_ONLY  // without a flag that only the owner may use
    {"open:1:EPERM", converted, "", times},
#endif
};

std::string replaceAll(std::string text, const std::string& place, const std::string& value) {
  for (std::size_t at = 0; (at = text.find(place, at)) != std::string::npos; at += value.size())
    text.replace(at, place.size(), value);
  return text;
}

/// Runs the program with the fault for the paths that start with `below`, one file after the other,
/// so that it is known which call is the first.
Outcome run(const fs::path& folder, const std::string& fault, const fs::path& below,
            std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), {CORVANA_CLI, "--quiet", "--jobs", "1"});
  const Process process(folder, std::move(arguments), [&] {
    ::setenv("ASAN_OPTIONS", "verify_asan_link_order=0", 1);
    ::setenv("CORVANA_FAULT", fault.c_str(), 1);
    ::setenv("CORVANA_FAULT_BELOW", below.c_str(), 1);
    ::setenv("LD_PRELOAD", CORVANA_FAULTS_LIBRARY, 1);
  });
  return process.finish();
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
    const std::string outputFolder = c.options == subfolder ? (isAIFF ? "/WAV/" : "/AIFF/") : "/";
    const auto inputOf = [&](const std::string& name) { return folder / (name + "/" + name + in); };
    const auto outputOf = [&](const std::string& name, const std::string& number = {}) {
      return folder / (name + outputFolder + name + number + out);
    };
    std::vector<std::string> arguments = c.options;
    for (const char* name : {"a", "b", "c"})
      arguments.push_back(folder.write(inputOf(name), input).native());
    if (!c.present.empty()) folder.write(outputOf("b"), c.present);

    // Whether a name exists is also asked of the input.
    const bool asksForName = c.fault.starts_with("stat") || c.fault.starts_with("lstat");
    const Outcome outcome = run(folder.path(), replaceAll(c.fault, ".%EXT", in),
                                asksForName ? outputOf("b") : folder / "b", arguments);
    const auto success = [&](const std::string& name, const std::string& number = {}) {
      return name + in + " => " + name + number + out + "  [8-bit, mono, 44100 Hz, root key 60, " +
             (isAIFF ? "1 loop, 1 cue point]\n" : "1 loop, 3 markers]\n");
    };
    std::string said =
        c.ending == converted ? success("b", c.message) : "✗ b" + in + ": " + c.message + "\n";
    said = replaceAll(said, "%IN", inputOf("b").native());
    said = replaceAll(said, "%OUT", outputOf("b").native());
    said = replaceAll(said, "%DIR", outputOf("b").parent_path().native());
    EXPECT_EQ(outcome.output, success("a") + said + success("c"));
    EXPECT_EQ(outcome.status, c.ending == converted ? 0 : 1);
    const std::string reason = "corvana-cli: " + outputOf("b").native() + ": ";
    if (c.fault.starts_with("times")) {
      const char* const error = c.options == times ? "Operation not permitted" : "Read-only file";
      EXPECT_TRUE(
          outcome.errors.starts_with(reason + "It has not got the times of its input: " + error))
          << outcome.errors;
    } else {
      EXPECT_TRUE(c.message == unwritten ? outcome.errors.starts_with(reason)
                                         : outcome.errors.empty());
    }

    std::size_t fileCount = 3 + 2;  // inputs, outputs of a and c
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
    if (c.ending != failed) {
      const ByteBuffer written =
          readFile(outputOf("b", c.ending == converted ? c.message : std::string()));
      ASSERT_TRUE(c.ending == converted ? written.size() == output.size()
                                        : written.size() <= output.size());
      EXPECT_TRUE(std::equal(written.begin(), written.end(), output.begin()));
      ++fileCount;
    }
    EXPECT_EQ(folder.files().size(), fileCount) << testing::PrintToString(folder.files());
  }
};

TEST_P(FaultInjection, CostsOneFileAndNothingElse) {
  for (const Case& c : cases) {
    SCOPED_TRACE(c.fault + " " + testing::PrintToString(c.options) + " " + c.present);
    check(c);
  }
}

INSTANTIATE_TEST_SUITE_P(Directions, FaultInjection, testing::Bool());

TEST(FaultInjectionProof, FindsWhatTheDiskDidNotKeep) {
  const TemporaryFolder folder;
  folder.write("b.wav", instrument(/*isAIFF=*/false));
  const Outcome outcome =
      run(folder.path(), "write:1:flip", folder.path(), {"--verify", "--overwrite", "b.wav"});
  EXPECT_EQ(outcome.output.substr(0, outcome.output.find(" (")),
            "✗ b.wav: 'b.aif' is not as promised: Frame 1048575, channel 1: sample -127 instead of "
            "-128");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(fs::exists(folder / "b.aif"));
}

/// Although looking at its format and proving the output read both files.
TEST(FaultInjectionTimes, AreThoseFromBeforeTheRun) {
  for (const std::string fault : {"open:1:EINTR", "open:1:EPERM"}) {  // the second: not our file
    SCOPED_TRACE(fault);
    const TemporaryFolder folder;
    const fs::path input = folder.write("a.wav", instrument(/*isAIFF=*/false));
    const FileTimes before = {timespec{1'000, 5}, timespec{2'000, 7}};
    ASSERT_EQ(::utimensat(AT_FDCWD, input.c_str(), before.data(), 0), 0);
    EXPECT_EQ(run(folder.path(), fault, folder.path(),
                  {"--preserve-times", "--verify", "--to", "aiff", "a.wav"})
                  .errors,
              "");
    for (const fs::path& file : {folder / "a.aif", input}) {
      struct stat status {};
      ASSERT_EQ(::stat(file.c_str(), &status), 0);
      EXPECT_EQ(status.st_mtim.tv_sec * 1'000 + status.st_mtim.tv_nsec, 2'000'007);
      if (file == input && (CORVANA_POSIX_ONLY || fault == "open:1:EPERM")) continue;
      EXPECT_EQ(status.st_atim.tv_sec * 1'000 + status.st_atim.tv_nsec, 1'000'005);
    }
  }
}

/// What the search could not read is named, and the rest converted.
TEST(FaultInjectionSearch, NamesWhatItCouldNotSearch) {
  const struct {
    const char* fault;
    int status;
    const char *log, *reason;
  } searches[] = {
      {"folder:1:EACCES", 1, "a.wav|c.wav|", "Permission denied"},
      {"list:1:ENOMEM", 1, "a.wav|c.wav|", "Cannot allocate memory"},
      {"readdir:1:EIO", 1, "a.wav|c.wav|", "Input/output error"},
      {"readdir:1+:untyped", 0, "a.wav|b.wav|d.wav|c.wav|", ""},
  };
  for (const auto& c : searches) {
    SCOPED_TRACE(c.fault);
    const TemporaryFolder folder;
    for (const char* name : {"a.wav", "b/b.wav", "b/d/d.wav", "c.wav"})
      folder.write(name, wav({fmt({}), test::data({1, 2})}));
    const std::string below = (folder / "b").native();
    const Outcome outcome = run(folder.path(), c.fault, below, {folder.path().native()});
    EXPECT_EQ(outcome.status, c.status);
    EXPECT_EQ(std::regex_replace(outcome.output, std::regex(" .*\n"), "|"), c.log);
    EXPECT_EQ(outcome.errors,
              *c.reason == 0 ? "" : "corvana-cli: " + below + "/: " + c.reason + "\n");
  }
}

}  // namespace
}  // namespace corvana::test
