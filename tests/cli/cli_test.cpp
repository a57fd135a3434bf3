// Runs the program as a shell would and looks at what comes out.

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
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
    std::vector<char*> pointers(arguments.size() + 1);
    std::transform(arguments.begin(), arguments.end(), pointers.begin(),
                   [](std::string& argument) { return argument.data(); });
    const pid_t child = ::fork();
    if (child != 0) return child;
    if (::chdir(in.path().c_str()) != 0) ::_exit(99);
    for (const int stream : {1, 2}) {
      const std::string name = (out / std::to_string(stream)).native();
      ::dup2(::open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), stream);
    }
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

  void writeWav(const std::string& name) const { in.write(name, wav({fmt({}), data({1, 2})})); }

  const TemporaryFolder in;
  const TemporaryFolder out;
};

const std::string summary = "  [16-bit, mono, 44100 Hz]\n";

TEST_F(Program, LogsToStandardOutputAndTheStatusToStandardError) {
  writeWav("a.wav");
  writeWav("b/c.wav");
  const Outcome plain = run({"a.wav", "b"});
  EXPECT_EQ(plain.output, "a.wav => a.aif" + summary + "c.wav => c.aif" + summary);
  EXPECT_EQ(plain.errors, "Done – 2 files processed.\n");
  EXPECT_EQ(run({"--quiet", "--subfolder", "a.wav"}).errors, "");
  EXPECT_TRUE(fs::exists(in / "AIFF/a.aif"));
  EXPECT_EQ(run({"--overwrite", "a.wav"}).output, "a.wav => a.aif" + summary);
  EXPECT_EQ(run({"a.wav"}).output, "a.wav => a (1).aif" + summary);
}

TEST_F(Program, ExitStatusTellsWhetherAllWentWell) {
  writeWav("good.wav");
  in.write("bad.wav", "");
  in.write("notes.txt", "");
  writeWav("-dash.wav");
  const struct {
    std::vector<std::string> arguments;
    int status;
    const char *output, *errors;  ///< parts of them
  } cases[] = {
      {{"bad.wav", "good.wav"}, 1, "short\ngood.wav => ", "Done – 2"},
      {{"none.wav", "good.wav"}, 1, "good.wav => ", "corvana-cli: none.wav: No such file or dir"},
      {{"notes.txt"},
       1,
       "No WAV or AIFF files found.\n",
       "corvana-cli: notes.txt: Not a WAV or AIFF"},
      {{"notes.txt", "good.wav"}, 0, "good.wav => ", "corvana-cli: notes.txt: Not a WAV or AIFF"},
      {{}, 2, "", "PATH"},
      {{"--unknown", "good.wav"}, 2, "", "--unknown"},
      {{"x", "-\x1b]0;\u202E\nforged"}, 2, "", ": -\uFFFD]0;\uFFFD\uFFFDforged\nRun with"},
      {{"no\x1b\nforged.wav"}, 1, "", "corvana-cli: no\uFFFD\uFFFDforged.wav: No such file"},
      {{"-dash.wav"}, 2, "", "is given as \"./-dash.wav\".\n"},
      {{"./-dash.wav"}, 0, "-dash.wav => ", ""},
      {{"--version"}, 0, "corvana-cli ", ""},
      {{"--help"}, 0, "Exit status:", ""},
      {{"good.wav"}, 0, "good.wav => ", "Done – 1 file processed.\n"},
  };
  for (const auto& c : cases) {
    const Outcome outcome = run(c.arguments);
    EXPECT_EQ(outcome.status, c.status) << c.output << c.errors;
    EXPECT_NE(outcome.output.find(c.output), std::string::npos) << outcome.output;
    EXPECT_NE(outcome.errors.find(c.errors), std::string::npos) << outcome.errors;
  }
}

TEST_F(Program, SparesTheInputsOfItsOwnRun) {
  in.write("x.wav", wav({fmt({}), data({1, 2})}));
  in.write("x.aif", aiff({comm({.frames = 1}), ssnd({3, 4})}));
  in.write("y.wav", wav({fmt({}), data({1, 2})}));
  const ByteBuffer inputs = join({readFile(in / "x.wav"), readFile(in / "x.aif")});
  const auto intact = [&] {
    return join({readFile(in / "x.wav"), readFile(in / "x.aif")}) == inputs;
  };
  const std::string ways =
      " is to be converted as well – use --to, --subfolder or --overwrite-inputs.\n";
  const Outcome refused = run({"--overwrite", "."});
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.output,
            "✗ x.aif: 'x.wav'" + ways + "✗ x.wav: 'x.aif'" + ways + "y.wav => y.aif" + summary);
  EXPECT_TRUE(intact());
  EXPECT_EQ(run({"--overwrite", "--subfolder", "x.wav", "x.aif"}).status, 0);
  EXPECT_EQ(run({"x.wav", "./x.aif"}).status, 0) << "numbered names";
  EXPECT_TRUE(intact());
  EXPECT_EQ(run({"--overwrite", "--to", "wav", "x.aif", "y.wav"}).output,
            "x.aif => x.wav" + summary);
  in.write("x.wav", wav({fmt({}), data({5, 6})}));
  EXPECT_EQ(run({"--overwrite", "--to", "aiff", "."}).status, 0);
  EXPECT_EQ(readFile(in / "x.aif").back(), 5);
  EXPECT_EQ(run({"--overwrite-inputs", "x.wav", "x.aif"}).status, 0);
  EXPECT_EQ(run({"--to", "mp3", "x.wav"}).status, 2);
}

TEST_F(Program, FindsFilesDeeperThanAnyPathIsLong) {
  const std::string name(250, 'd');
  int folder = ::open(in.path().c_str(), O_RDONLY | O_DIRECTORY);
  for (int depth = 0; depth < 80; ++depth) {
    ASSERT_EQ(::mkdirat(folder, name.c_str(), 0777), 0);
    const int below = ::openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY);
    ::close(folder);
    folder = below;
  }
  writeWav("a.wav");
  ASSERT_EQ(::linkat(AT_FDCWD, (in / "a.wav").c_str(), folder, "deep.wav", 0), 0);
  const Outcome outcome = run({"--subfolder", "."});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.output, "a.wav => a.aif" + summary + "deep.wav => deep.aif" + summary);
  EXPECT_EQ(::faccessat(folder, "AIFF/deep.aif", R_OK, 0), 0);
  ::close(folder);
}

TEST_F(Program, TakesAnyName) {
  for (const char* name : {"[a,b].wav", "-x.wav", "a\nb.wav", "\xFF\x1b[2J.wav", "'q\" ü.wav"}) {
    writeWav(name);
    const std::string stem = fs::path(name).stem().native();
    EXPECT_EQ(run({"--", name}).output,
              std::string(name).append(" => ").append(stem).append(".aif").append(summary))
        << "exact bytes";
    EXPECT_TRUE(fs::exists(in / (stem + ".aif")));
  }
  EXPECT_EQ(run({"[a,b].wav"}).status, 0);
}

TEST_F(Program, ReportsALogThatNobodyTakes) {
  writeWav("a.wav");
  const std::function<void()> breakPipe = [] {
    int ends[2];
    if (::pipe(ends) != 0 || ::dup2(ends[1], 1) < 0) ::_exit(98);
    ::close(ends[0]);
  };
  const std::function<void()> fillDisk = [] { ::dup2(::open("/dev/full", O_WRONLY), 1); };
  for (const auto& prepare : {breakPipe, fillDisk}) {
    const Outcome outcome = run({"--quiet", "--overwrite", "a.wav"}, prepare);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "corvana-cli: the log could not be written completely\n");
    for (const char* option : {"--help", "--version"})
      EXPECT_EQ(run({option}, prepare).status, 1) << option;
  }
}

TEST_F(Program, WorksWithoutAStandardStream) {
  writeWav("🎹.wav");
  for (const int stream : {0, 1, 2}) {
    const Outcome outcome = run({"--overwrite", "🎹.wav"}, [stream] { ::close(stream); });
    EXPECT_EQ(outcome.status, stream == 1 ? 1 : 0);
    EXPECT_EQ(outcome.output, stream == 1 ? "" : "🎹.wav => 🎹.aif" + summary);
    EXPECT_EQ(firstBytes(readFile(in / "🎹.aif"), 4), text("FORM")) << "no log among the samples";
  }
}

/// Columns of a text of the names below, and what the program says about them.
std::size_t columnsOf(std::string_view text) {
  std::size_t columns = 0;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte & 0xC0U) != 0x80) columns += byte == 0xE9 || byte == 0xF0 ? 2 : 1;
  }
  return columns;
}

TEST_F(Program, KeepsItsLinesOnATerminal) {
  const std::string hostile = "\x1b]0;pwn\a\n✗ forged";
  writeWav(hostile + ".wav");
  const std::string big = "x音音音音🎹🎹🎹🎹音音音音.wav";
  in.write(big, wav({fmt({}), bytes("'data' FF FF FF EF")}));
  fs::resize_file(in / big, 3'900'000'000);

  constexpr winsize window{25, 60, 0, 0};
  int terminal = -1;
  const pid_t child = ::forkpty(&terminal, nullptr, nullptr, &window);
  if (child == 0) {
    if (::chdir(in.path().c_str()) != 0) ::_exit(99);
    ::setenv("LC_ALL", "C", 1);
    ::execl(CORVANA_CLI, CORVANA_CLI, (hostile + ".wav").c_str(), big.c_str(), nullptr);
    ::_exit(99);
  }
  std::string screen;
  bool isStopped = false;
  std::array<char, 4096> part{};
  for (ssize_t length = 0; (length = ::read(terminal, part.data(), part.size())) > 0;) {
    screen.append(part.data(), static_cast<std::size_t>(length));
    if (!isStopped && screen.find("x音") != std::string::npos)
      isStopped = ::kill(child, SIGINT) == 0;
  }
  ::close(terminal);
  int status = 0;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(WEXITSTATUS(status), 130);

  const std::string shown = "\uFFFD]0;pwn\uFFFD\uFFFD✗ forged";
  EXPECT_NE(screen.find("\x1b[K" + shown + ".wav => " + shown + ".aif  [16"), std::string::npos);
  EXPECT_NE(screen.find("Converting x音音"), std::string::npos) << screen;
  constexpr std::string_view erase = "\r\x1b[K";
  for (std::size_t at = screen.find(erase); at != std::string::npos;) {
    const std::size_t next = screen.find(erase, at + 1);
    const std::string drawn = screen.substr(at + erase.size(), next - at - erase.size());
    EXPECT_EQ(drawn.find('\x1b'), std::string::npos);
    EXPECT_TRUE(!drawn.starts_with('[') || columnsOf(drawn) < window.ws_col) << drawn;
    at = next;
  }
}

TEST_F(Program, ALimitOnTheSizeOfFilesFailsTheFile) {
  writeWav("a.wav");
  const auto limit = [] {
    const rlimit small{40, 40};  // bytes of any file, so the log goes nowhere
    ::setrlimit(RLIMIT_FSIZE, &small);
    ::dup2(::open("/dev/null", O_WRONLY), 1);
  };
  EXPECT_EQ(run({"--quiet", "a.wav"}, limit).status, 1);
  EXPECT_EQ(fs::file_size(in / "a.aif"), 40U);
}

TEST_F(Program, StopsWithinASecond) {
  in.write("big.wav", wav({fmt({}), bytes("'data' FF FF FF EF")}));
  fs::resize_file(in / "big.wav", 3'900'000'000);
  writeWav("next.wav");
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    const pid_t child = start({"--overwrite", "big.wav", "next.wav"});
    while (!fs::exists(in / "big.aif") || fs::file_size(in / "big.aif") < 5'000'000)
      std::this_thread::sleep_for(1ms);
    const auto asked = std::chrono::steady_clock::now();
    ::kill(child, signal);
    const Outcome outcome = finish(child);
    EXPECT_LT(std::chrono::steady_clock::now() - asked, 1s);
    EXPECT_EQ(outcome.status, 128 + signal);
    EXPECT_EQ(outcome.output, "✗ big.wav: Stopped – 'big.aif' is incomplete.\n");
    fs::remove(in / "big.aif");
  }
  in.write("big.aif", "older");
  const pid_t child = start({"--safe", "--overwrite", "--to", "aiff", "big.wav"});
  while (in.files().size() < 4)
    std::this_thread::sleep_for(1ms);
  ::kill(child, SIGINT);
  EXPECT_EQ(finish(child).output, "✗ big.wav: Stopped – 'big.aif' is not made.\n");
  EXPECT_EQ(readText(in / "big.aif"), "older");
  EXPECT_EQ(in.files().size(), 3U);
}

TEST_F(Program, EndsWhileNobodyTakesItsLog) {
#ifdef CORVANA_THREAD_SANITIZER
  GTEST_SKIP() << "the sanitizer holds a signal back until the system call returns";
#endif
  writeWav("a.wav");
  const struct {
    std::vector<int> signals;
    int ignored, status;
    std::chrono::milliseconds minTime, maxTime;  ///< from the last signal to the end
  } cases[] = {
      {{SIGHUP}, 0, 129, 700ms, 999ms},
      {{SIGINT, SIGINT}, 0, 130, 0ms, 500ms},
      {{SIGINT, SIGTERM}, SIGINT, 143, 700ms, 999ms},
  };
  for (const auto& c : cases) {
    const pid_t child = start({"a.wav"}, [&c] {
      int ends[2];
      if (::pipe2(ends, O_NONBLOCK) != 0) ::_exit(98);
      while (::write(ends[1], std::string(4096, ' ').data(), 4096) > 0) {
      }
      ::fcntl(ends[1], F_SETFL, 0);
      ::dup2(ends[1], 1);
      if (c.ignored != 0) std::signal(c.ignored, SIG_IGN);
    });
    while (!fs::exists(in / "a.aif"))
      std::this_thread::sleep_for(1ms);
    std::chrono::steady_clock::time_point asked;
    for (const int signal : c.signals) {
      std::this_thread::sleep_for(50ms);
      asked = std::chrono::steady_clock::now();
      ::kill(child, signal);
    }
    EXPECT_EQ(finish(child).status, c.status);
    const auto duration = std::chrono::steady_clock::now() - asked;
    EXPECT_TRUE(duration >= c.minTime && duration <= c.maxTime) << c.status;
    fs::remove(in / "a.aif");
  }
}

TEST_F(Program, SpeaksTheUsersLanguage) {
  if (!fs::exists(fs::path(CORVANA_CLI).parent_path() / "locale/de/LC_MESSAGES/Corvana.mo"))
    GTEST_SKIP() << "built without the German catalogue";
  in.write("bad.wav", "");
  const std::function<void()> wanted = [] { ::setenv("LANGUAGE", "de", 1); };
  const std::function<void()> notGenerated = [] {
    ::setenv("LC_ALL", "de_DE.UTF-8", 1);
    ::setenv("LOCPATH", "/nowhere", 1);
  };
  for (const auto& prepare : {wanted, notGenerated}) {
    const Outcome german = run({"bad.wav"}, prepare);
    EXPECT_TRUE(german.output.starts_with("✗ bad.wav: ")) << german.output;
    EXPECT_EQ(german.output.find("Unsupported format"), std::string::npos);
    EXPECT_EQ(german.errors.find("processed"), std::string::npos);
  }
}

TEST_F(Program, ConvertsTheExampleInstrumentsThereAndBack) {
  ASSERT_EQ(std::system((CORVANA_EXAMPLES " '" + in.path().native() + "'").c_str()), 0);
  const Outcome there = run({"--subfolder", "."});
  EXPECT_EQ(there.status, 0);
  EXPECT_EQ(std::count(there.output.begin(), there.output.end(), '\n'), 8 + 3) << there.output;
  EXPECT_EQ(run({"--subfolder", "Bass/AIFF"}).status, 0);
  EXPECT_EQ(readFile(in / "Bass/AIFF/WAV/Round Bass D2.wav"),
            readFile(in / "Bass/Round Bass D2.wav"));
}

}  // namespace
}  // namespace corvana
