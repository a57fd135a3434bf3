// Runs the program as a shell would and looks at what comes out.

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/audio_builder.hpp"
#include "support/temporary_folder.hpp"

namespace corvana {
namespace {

using namespace test;
using namespace std::chrono_literals;

class Program : public testing::Test {
 protected:
  struct Outcome {
    int status;  ///< exit status, or minus the signal that ended it
    std::string output, errors;
  };

  /// `prepare` runs in the new process, in the working folder "in", before the program starts.
  pid_t start(
      std::vector<std::string> arguments, const std::function<void()>& prepare = [] {}) {
    arguments.insert(arguments.begin(), CORVANA_CLI);
    std::vector<char*> pointers;
    for (std::string& argument : arguments)
      pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    const pid_t child = ::fork();
    if (child != 0) return child;
    if (::chdir(in().c_str()) != 0) ::_exit(99);
    ::dup2(::open((out / "1").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 1);
    ::dup2(::open((out / "2").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 2);
    ::setenv("LC_ALL", "C.UTF-8", 1);
    ::unsetenv("LANGUAGE");
    prepare();
    ::execv(CORVANA_CLI, pointers.data());
    ::_exit(99);
  }

  Outcome finish(pid_t child) {
    int status = 0;
    ::waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status), readText(out / "1"),
            readText(out / "2")};
  }

  Outcome run(
      std::vector<std::string> arguments, const std::function<void()>& prepare = [] {}) {
    return finish(start(std::move(arguments), prepare));
  }

  fs::path in() const { return folder / "in"; }
  void writeWav(const std::string& name) const {
    folder.write("in/" + name, wav({fmt({}), data({1, 2})}));
  }

  const TemporaryFolder folder;
  const TemporaryFolder out;
};

constexpr const char* summary = "  [16-bit, mono, 44100 Hz]\n";

TEST_F(Program, LogsToStandardOutputAndTheStatusToStandardError) {
  writeWav("a.wav");
  writeWav("b/c.wav");
  const Outcome plain = run({"a.wav", "b"});
  EXPECT_EQ(plain.status, 0);
  EXPECT_EQ(plain.output, std::string("a.wav => a.aif") + summary + "c.wav => c.aif" + summary);
  EXPECT_EQ(plain.errors, "Done – 2 files processed.\n");
  const Outcome quiet = run({"--quiet", "--subfolder", "a.wav"});
  EXPECT_EQ(quiet.status, 0);
  EXPECT_EQ(quiet.errors, "");
  EXPECT_EQ(folder.files(), (std::vector<std::string>{"in/AIFF/a.aif", "in/a.aif", "in/a.wav",
                                                      "in/b/c.aif", "in/b/c.wav"}));
  EXPECT_EQ(run({"--overwrite", "a.wav"}).output, std::string("a.wav => a.aif") + summary);
  EXPECT_EQ(run({"a.wav"}).output, std::string("a.wav => a (1).aif") + summary);
}

TEST_F(Program, ExitStatusTellsWhetherAllWentWell) {
  writeWav("good.wav");
  folder.write("in/bad.wav", "");
  folder.write("in/notes.txt", "");
  ASSERT_EQ(::mkfifo((in() / "pipe.wav").c_str(), 0600), 0);
  const struct {
    std::vector<std::string> arguments;
    int status;
    const char *inOutput, *inErrors;
  } cases[] = {
      {{"bad.wav", "good.wav"},
       1,
       "✗ bad.wav: Unsupported format: file is too short\ngood.wav => ",
       "Done – 2"},
      {{"missing.wav", "good.wav"},
       1,
       "good.wav => ",
       "corvana-cli: missing.wav: No such file or directory\n"},
      {{"notes.txt"}, 1, "No WAV or AIFF files found.\n", ""},
      {{"pipe.wav"}, 1, "✗ pipe.wav: Cannot read 'pipe.wav': Not a regular file\n", ""},
      {{}, 2, "", "PATH"},
      {{"--unknown", "good.wav"}, 2, "", "--unknown"},
      {{"--version"}, 0, "corvana-cli ", ""},
      {{"--help"}, 0, "Exit status:", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.arguments.empty() ? "no arguments" : c.arguments[0]);
    const Outcome outcome = run(c.arguments);
    EXPECT_EQ(outcome.status, c.status);
    EXPECT_NE(outcome.output.find(c.inOutput), std::string::npos) << outcome.output;
    EXPECT_NE(outcome.errors.find(c.inErrors), std::string::npos) << outcome.errors;
  }
}

TEST_F(Program, TakesAnyName) {
  for (const char* name : {"[a,b].wav", "-x.wav", "a\nb.wav", "\xFF\x1b[2J.wav", "'q\" ü.wav"}) {
    SCOPED_TRACE(name);
    writeWav(name);
    const std::string stem = fs::path(name).stem().native();
    const Outcome outcome = run({"--", name});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, name + (" => " + stem) + ".aif" + summary) << "exact bytes";
    EXPECT_TRUE(fs::exists(in() / (stem + ".aif")));
  }
  EXPECT_EQ(run({"[a,b].wav"}).status, 0);
}

TEST_F(Program, ReportsALogThatNobodyTakes) {
  writeWav("a.wav");
  const auto closeOutput = [] { ::close(1); };
  const auto breakPipe = [] {
    int ends[2];
    if (::pipe(ends) != 0 || ::dup2(ends[1], 1) < 0) ::_exit(98);
    ::close(ends[0]);
  };
  const auto fillDisk = [] { ::dup2(::open("/dev/full", O_WRONLY), 1); };
  for (const std::function<void()>& prepare :
       {std::function<void()>(breakPipe), std::function<void()>(fillDisk)}) {
    const Outcome outcome = run({"--overwrite", "a.wav"}, prepare);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.errors.find("the log could not be written completely"), std::string::npos);
  }
  const Outcome closed = run({"--overwrite", "a.wav"}, closeOutput);
  EXPECT_EQ(closed.status, 0);
  EXPECT_EQ(firstBytes(readFile(in() / "a.aif"), 4), text("FORM")) << "no log among the samples";
}

TEST_F(Program, AFullDiskFailsTheFile) {
  writeWav("a.wav");
  const Outcome outcome = run({"a.wav"}, [] {
    const rlimit small{40, 40};  // bytes of any file
    ::setrlimit(RLIMIT_FSIZE, &small);
    const int pipeToNobody = ::open("/dev/null", O_WRONLY);
    ::dup2(pipeToNobody, 1);
    ::dup2(pipeToNobody, 2);
  });
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(fs::file_size(in() / "a.aif"), 40U);
}

TEST_F(Program, StopsWithinASecond) {
  folder.write("in/big.wav", join({firstBytes(wav({fmt({}), data({})}), 40), le(0xEFFFFFFF, 4)}));
  fs::resize_file(in() / "big.wav", 3'900'000'000);
  const std::pair<int, int> cases[] = {{SIGINT, 130}, {SIGTERM, 143}};
  for (const auto& [signal, status] : cases) {
    const pid_t child = start({"--overwrite", "big.wav"});
    while (!fs::exists(in() / "big.aif") || fs::file_size(in() / "big.aif") < 5'000'000)
      std::this_thread::sleep_for(1ms);
    const auto asked = std::chrono::steady_clock::now();
    ::kill(child, signal);
    const Outcome outcome = finish(child);
    EXPECT_LT(std::chrono::steady_clock::now() - asked, 1s);
    EXPECT_EQ(outcome.status, status);
    EXPECT_TRUE(outcome.output.starts_with("✗ big.wav: Stopped – 'big.aif' is incomplete.\n"))
        << outcome.output;
    fs::remove(in() / "big.aif");
  }
}

TEST_F(Program, SpeaksTheUsersLanguage) {
  if (!fs::exists(fs::path(CORVANA_CLI).parent_path() / "locale/de/LC_MESSAGES/Corvana.mo"))
    GTEST_SKIP() << "built without the German catalogue";
  folder.write("in/bad.wav", "");
  const Outcome german = run({"bad.wav"}, [] { ::setenv("LANGUAGE", "de", 1); });
  EXPECT_TRUE(german.output.starts_with("✗ bad.wav: ")) << german.output;
  EXPECT_EQ(german.output.find("Unsupported format"), std::string::npos);
  EXPECT_EQ(german.errors.find("processed"), std::string::npos);
}

TEST_F(Program, ConvertsTheExampleInstrumentsThereAndBack) {
  const std::string make = std::string(CORVANA_EXAMPLES) + " '" + in().native() + "'";
  ASSERT_EQ(std::system(make.c_str()), 0);
  const Outcome there = run({"--subfolder", "."});
  EXPECT_EQ(there.status, 0);
  EXPECT_EQ(std::count(there.output.begin(), there.output.end(), '\n'), 8 + 3) << there.output;
  EXPECT_EQ(run({"--subfolder", "Bass/AIFF"}).status, 0);
  EXPECT_EQ(readFile(in() / "Bass/AIFF/WAV/Round Bass D2.wav"),
            readFile(in() / "Bass/Round Bass D2.wav"));
}

}  // namespace
}  // namespace corvana
