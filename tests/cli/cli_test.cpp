// Runs the program as a shell would and looks at what comes out.

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <gtest/gtest.h>
#include <regex>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <thread>

#include "platform/standard_streams.hpp"
#include "support/audio_builder.hpp"
#include "support/conversion.hpp"
#include "support/program.hpp"

namespace corvana {
namespace {

using namespace test;
using namespace std::chrono_literals;
using Prepare = std::function<void()>;

class Program : public testing::Test {
 protected:
  Process start(std::vector<std::string> arguments, const Prepare& prepare = nullptr) const {
    arguments.insert(arguments.begin(), CORVANA_CLI);
    return {in.path(), std::move(arguments), prepare};
  }
  Outcome run(const std::vector<std::string>& arguments, const Prepare& prepare = nullptr) const {
    return start(arguments, prepare).finish();
  }
  void writeWav(const std::string& name, const ByteBuffer& samples = {1, 2}) const {
    in.write(name, wav({fmt({}), data(samples)}));
  }
  void writeHugeWav(const std::string& name) const {
    in.write(name, wav({fmt({}), bytes("'data' FF FF FF EF")}));
    // On 32-bit processors it has to find a place beside the program.
    fs::resize_file(in / name, sizeof(void*) > 4 ? 3'900'000'000 : 1'000'000'000);
  }

  /// What comes to a terminal of 60 columns. `watch` sees it whenever there is more.
  std::string screenOf(const std::vector<std::string>& arguments, int status,
                       const Prepare& prepare,
                       const std::function<void(pid_t, const std::string&)>& watch = {}) const {
    constexpr winsize window{25, 60, 0, 0};
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    EXPECT_EQ(::grantpt(terminal) | ::unlockpt(terminal), 0);
    const int inner = ::open(::ptsname(terminal), O_RDWR | O_NOCTTY);
    EXPECT_EQ(::ioctl(inner, TIOCSWINSZ, &window), 0);
    const Process process = start(arguments, [&] {
      prepare();
      for (const int stream : {0, 1, 2})
        ::dup2(inner, stream);
    });
    ::close(inner);
    std::string screen;
    std::array<char, 4096> part{};
    for (ssize_t length = 0; (length = ::read(terminal, part.data(), part.size())) > 0;) {
      screen.append(part.data(), static_cast<std::size_t>(length));
      if (watch) watch(process.id, screen);
    }
    ::close(terminal);
    EXPECT_EQ(process.finish().status, status);
    return screen;
  }

  const TemporaryFolder in;
};

const std::string summary = "  [16-bit, mono, 44100 Hz]\n";

TEST_F(Program, GivesFewerLoopsAndKeysFromNamesOnRequest) {
  const ByteBuffer sound = data(ByteBuffer(8));
  in.write("loops.wav",
           wav({fmt({}), sound, smpl(60, 0, {{0, 0, 9, 9, 0}, {0, 0, 1, 2, 3}, {0, 0, 0, 3, 0}})}));
  in.write("loops.aiff",
           aiff({comm({.frames = 4}), mark({{1, 0, ""}, {2, 3, ""}}),
                 inst(AiffInstrument{.sustainLoop = {1, 7, 8}, .releaseLoop = {1, 1, 2}}),
                 ssnd(ByteBuffer(8))}));
  in.write("Bass A2.wav", wav({fmt({}), sound}));
  in.write("C4.aif", aiff({comm({.frames = 4}), ssnd(ByteBuffer(8))}));
  const struct {
    std::vector<std::string> options;
    const char *input, *output, *log;  ///< behind the names
    int statusWithout = 1;             ///< where the proof knows nothing of the options
  } cases[] = {
      {{"--no-loops"}, "loops.wav", "out/loops.aif", "root key 60]"},
      {{"--first-loop-only"},
       "loops.wav",
       "out/loops.aif",
       "root key 60, 1 loop, 2 markers]\n"
       "   ⚠︎ Loop 1 is invalid (start 9, end 9) – skipped.\n"
       "   ⚠︎ Loop 2: a play count of 3"},
      {{"--no-loops"}, "loops.aiff", "out/loops.wav", "root key 0, 2 cue points]\n"},
      {{"--first-loop-only"},
       "loops.aiff",
       "out/loops.wav",
       "root key 0, 1 loop]\n   ⚠︎ Sustain loop: the",
       0},
      {{"--root-from-name"},
       "Bass A2.wav",
       "out/Bass A2.aif",
       "root key 45]\n   ⚠︎ Root key 45 is taken from the file's"},
      {{"--root-from-name", "--middle-c", "C3"},
       "C4.aif",
       "out/C4.wav",
       "root key 72]\n   ⚠︎ Root key 72"},
      {{"--root-from-name"}, "loops.wav", "out/loops.aif", "root key 60, 2 loops", 0},
  };
  for (const auto& c : cases) {
    std::vector<std::string> arguments = {"--overwrite", "--quiet", "--output", "out", c.input};
    arguments.insert(arguments.end(), c.options.begin(), c.options.end());
    arguments.emplace_back("--verify");
    EXPECT_NE(run(arguments).output.find(c.log), std::string::npos)
        << c.options[0] << ' ' << run(arguments).output;
    arguments = {"verify", c.input, c.output};
    EXPECT_EQ(run(arguments).status, c.statusWithout) << c.options[0];
    arguments.insert(arguments.end(), c.options.begin(), c.options.end());
    EXPECT_EQ(run(arguments).status, 0) << c.options[0];
  }
  EXPECT_EQ(run({"--no-loops", "--first-loop-only", "loops.wav"}).status, 2);
  const Outcome shown = run({"info", "--root-from-name", "--middle-c", "C3", "C4.aif"});
  EXPECT_NE(shown.output.find("Root key 72"), std::string::npos) << shown.output;
}

TEST_F(Program, ConvertsBackToTheLastByteOnRequest) {
  const ByteBuffer original = wav({fmt({}), wavChunk("bext", bytes("'x'")), data(ByteBuffer(8)),
                                   smpl(60, 0, {{0, 2, 0, 3, 7}})});
  in.write("a.wav", original);
  ASSERT_EQ(run({"--reversible", "--verify", "a.wav"}).status, 0);
  const Outcome back = run({"--reversible", "--verify", "--json", "--output", "back", "a.aif"});
  EXPECT_NE(back.output.find(R"("restored":true)"), std::string::npos) << back.output;
  EXPECT_EQ(readFile(in / "back/a.wav"), original);
  EXPECT_EQ(run({"verify", "a.aif", "back/a.wav"}).status, 1);
  EXPECT_EQ(run({"verify", "--reversible", "a.aif", "back/a.wav"}).status, 0);
  EXPECT_EQ(run({"verify", "--reversible", "a.wav", "a.aif"}).status, 0);
  ASSERT_EQ(run({"--overwrite", "--strict", "a.wav"}).status, 3);
  EXPECT_NE(run({"verify", "--reversible", "a.wav", "a.aif"}).output, "") << "not reversible";
}

TEST_F(Program, ConvertsAnyEncodingOnRequest) {
  in.write("f.wav", wav({fmt({3, 1, 44100, 4, 32}), data({1, 0, 0xC0, 0x7F})}));
  in.write("x.wav", bytes("'RIFX' 00000024 'WAVE' 'fmt ' 00000010 0001 0001 0000AC44 00015888 0002 "
                          "0010 'data' 00000000"));
  EXPECT_EQ(run({"f.wav", "x.wav"}).output,
            "✗ f.wav: Unsupported format: floating-point WAV\n"
            "✗ x.wav: Unsupported format: neither WAV nor AIFF\n");
  const Outcome outcome = run({"--any-encoding", "--verify", "--json", "f.wav", "x.wav"});
  EXPECT_NE(outcome.output.find(R"("format":"aiff-c","encoding":"float","bits":32)"),
            std::string::npos);
  EXPECT_NE(outcome.output.find(R"("format":"aiff","bits":16)"), std::string::npos);
  EXPECT_NE(run({"info", "--any-encoding", "f.wav"}).output.find("=> AIFF  ["), std::string::npos);
  EXPECT_EQ(run({"verify", "f.wav", "f.aif"}).errors, "corvana-cli: No differences.\n");
  EXPECT_EQ(run({"verify", "x.aif", "x.wav"}).output,
            "The output cannot be read: Not a RIFF file.\n");
  EXPECT_EQ(run({"--any-encoding", "--to", "wav", "x.wav"}).status, 1) << "nothing to convert";
}

TEST_F(Program, LogsToStandardOutputAndTheStatusToStandardError) {
  writeWav("a.wav");
  writeWav("b/c.wav");
  const Outcome plain = run({"a.wav", "b"});
  EXPECT_EQ(plain.output, "a.wav => a.aif" + summary + "c.wav => c.aif" + summary);
  EXPECT_EQ(plain.errors, "Done – 2 files processed.\n");
  EXPECT_EQ(run({"--quiet", "--subfolder", "a.wav"}).errors, "");
  EXPECT_TRUE(fs::exists(in / "AIFF/a.aif"));
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
      {{"notes.txt"}, 1, "No WAV or AIFF files found.\n", "notes.txt: Not a WAV or AIFF"},
      {{"notes.txt", "good.wav"}, 0, "good.wav => ", "corvana-cli: notes.txt: Not a WAV or AIFF"},
      {{}, 2, "", "PATH or --files-from"},
      {{"-0", "good.wav"}, 2, "", "--null requires --files-from"},
      {{"--files-from", "none"}, 2, "", "corvana-cli: Cannot read 'none': No such file"},
      {{"x", "-\x1b]0;\u202E\nforged"}, 2, "", ": -\uFFFD]0;\uFFFD\uFFFDforged\nRun with"},
      {{"no\x1b\nforged.wav"}, 1, "", "corvana-cli: no\uFFFD\uFFFDforged.wav: No such file"},
      {{"-dash.wav"}, 2, "", "is given as \"./-dash.wav\".\n"},
      {{"./-dash.wav"}, 0, "-dash.wav => ", ""},
      {{"--version"}, 0, "corvana-cli ", ""},
      {{"--help"}, 0, "Exit status:", ""},
  };
  for (const auto& c : cases) {
    const Outcome outcome = run(c.arguments);
    EXPECT_EQ(outcome.status, c.status) << c.output << c.errors;
    EXPECT_NE(outcome.output.find(c.output), std::string::npos) << outcome.output;
    EXPECT_NE(outcome.errors.find(c.errors), std::string::npos) << outcome.errors;
  }
}

TEST_F(Program, VerifyTellsWhetherOneFileHoldsWhatTheOtherPromises) {
  writeWav("a.wav");
  EXPECT_EQ(run({"--verify", "a.wav"}).output, "a.wav => a.aif" + summary);
  in.write("b.aif", aiff({comm({.frames = 1}), patched(ssnd({2, 0}), 12, be(0, 4))}));
  in.write("bad\xFF.wav", "");
  const std::string difference = "Frame 0, channel 1: sample 512 instead of 513 (at byte 54).";
  const struct {
    std::vector<std::string> files;
    int status;
    std::string output, errors;  ///< parts of them; empty: all
  } cases[] = {
      {{"a.wav", "a.aif"}, 0, "", "corvana-cli: No differences.\n"},
      {{"a.wav", "b.aif"}, 1, difference + "\n", ""},
      {{"a.aif", "b.aif"}, 1, "", "'b.aif' is of the same format as the input"},
      {{"a.wav", "none.aif"}, 1, "", "Cannot read 'none.aif': No such file"},
      {{"a.wav", "."}, 1, "", "Is a directory"},
      {{"bad\xFF.wav", "a.aif"}, 1, "", "': Unsupported format: file is too short"},
      {{"a.wav"}, 2, "", "OUTPUT"},
      {{"a.wav", "a.aif", "b.aif"}, 2, "", "b.aif"},
      {{"--json", "a.wav", "b.aif"},
       1,
       R"({"schema":1,"input":"a.wav","output":"b.aif","direction":"wav-to-aiff",)"
       R"("differenceCount":1,"differences":[{"code":"sample","frame":0,"channel":1,"offset":54,)"
       R"("expected":513,"found":512,"text":")" +
           difference + "\"}]}\n",
       ""},
      {{"--json", "bad\xFF.wav", "a.aif"},
       1,
       "{\"schema\":1,\"input\":\"bad\uFFFD.wav\",\"inputBytes\":\"626164ff2e776176\",\"output\":"
       "\"a.aif\",\"error\":{\"code\":\"system-error\",\"values\":[],\"text\":\"Cannot",
       ""},
  };
  for (const auto& c : cases) {
    std::vector<std::string> arguments = c.files;
    arguments.insert(arguments.begin(), "verify");
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.status, c.status) << c.output << c.errors;
    EXPECT_TRUE(c.output.empty() ? outcome.output.empty() : outcome.output.starts_with(c.output))
        << outcome.output;
    EXPECT_NE(outcome.errors.find(c.errors), std::string::npos) << outcome.errors;
  }
}

TEST_F(Program, TakesItsPathsFromAListAndMayBeStrict) {
  const std::string loss = "   ⚠\uFE0E Incomplete last frame discarded.\n";
  const auto done = [](const std::string& stem) {
    return stem + ".wav => " + stem + ".aif" + summary;
  };
  for (const char* name : {"a.wav", "b.wav", "c\nd.wav"})
    writeWav(name);
  writeWav("lossy.wav", {1, 2, 3});
  const struct {
    std::string list;
    std::vector<std::string> arguments;
    int status;
    std::string output, errors;  ///< errors: a part
  } cases[] = {
      {"a.wav\n\nb.wav", {"./b.wav", "--strict"}, 0, done("b") + done("a") + done("b"), "Done"},
      {{"c\nd.wav\0\0a.wav\0", 15}, {"-0"}, 0, done("c\nd") + done("a"), "Done"},
      {"lossy.wav\n", {}, 0, done("lossy") + loss, "Done"},
      {"lossy.wav\n", {"--strict"}, 3, done("lossy") + loss, "Done"},
      {"none.wav\nlossy.wav", {"--strict"}, 1, done("lossy") + loss, "none.wav: No such file"},
      {"", {}, 1, "No WAV or AIFF files found.\n", ""},
      {{"a.wav\0", 6}, {}, 2, "", "input: line 1 holds a NUL byte"},
      {"a.wav\n" + std::string(70'000, 'x'), {}, 2, "", "line 2 is longer than any path\n"},
      {std::string(70'000, 'x'), {"--null"}, 2, "", "path 1 is longer than any path; a list"},
  };
  for (auto c : cases) {
    in.write("list", c.list);
    c.arguments.insert(c.arguments.end(), {"--overwrite", "--files-from", "-"});
    const Outcome outcome = run(c.arguments, [] { ::dup2(::open("list", O_RDONLY), 0); });
    EXPECT_EQ(outcome.status, c.status) << outcome.errors;
    EXPECT_EQ(outcome.output, c.output);
    EXPECT_NE(outcome.errors.find(c.errors), std::string::npos) << outcome.errors;
  }
}

TEST_F(Program, WritesItsLogInJson) {
  const std::string name = "a\xFF\u202E";
  writeWav(name + ".wav", {1, 2, 3});
  in.write("b.wav", aiff({comm({.bits = 64}), ssnd({})}));
  fs::create_symlink("gone", in / "c.wav");
  in.write("d.aif", aiff({comm({.frames = 1}), inst(AiffInstrument{60, 5, 0, 0, 0, 0, 0, {}, {}}),
                          ssnd({1, 2}), aiffChunk("bext", {1})}));
  const auto withoutTimes = [](const Outcome& outcome) {
    return std::regex_replace(outcome.output, std::regex(R"(,"seconds":[-.e\d]+\})"), "}");
  };
  const Outcome outcome = run({"--json", "--strict", "."});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(
      withoutTimes(outcome),
      R"({"schema":1,"input":"./a)"
      "\uFFFD\u202E"
      R"(.wav","inputBytes":"2e2f61ffe280ae2e776176",)"
      R"("output":"./a)"
      "\uFFFD\u202E"
      R"(.aif","outputBytes":"2e2f61ffe280ae2e616966",)"
      R"("direction":"wav-to-aiff","format":"aiff","bits":16,"channels":1,"sampleRate":44100,)"
      R"("loopCount":0,"markerCount":0,"cuePointCount":0,"frames":1,"bytes":56,"warnings":)"
      R"([{"code":"incomplete-frame","values":[],"text":"Incomplete last frame discarded."}],"leftOut":[]})"
      "\n"
      R"({"schema":1,"input":"./b.wav","direction":"aiff-to-wav","warnings":[],"error":)"
      R"({"code":"bit-depth","values":[64],"text":"Unsupported format: 64-bit"}})"
      "\n"
      R"({"schema":1,"input":"./c.wav","warnings":[],"error":{"code":"system-error","values":[],)"
      R"("text":"Cannot read './c.wav': No such file or directory","errorName":"ENOENT",)"
      R"("errorNumber":2}})"
      "\n"
      R"({"schema":1,"input":"./d.aif","output":"./d.wav","direction":"aiff-to-wav","format":"wav",)"
      R"("bits":16,"channels":1,"sampleRate":44100,"rootKey":60,"fineTune":5,"loopCount":0,)"
      R"("markerCount":0,"cuePointCount":0,"frames":1,"bytes":)" +
          std::to_string(fs::file_size(in / "d.wav")) +
          ",\"warnings\":[],\"leftOut\":[\"bext\"]}\n");
  const Outcome again = run({"--json", "--overwrite", "--skip-existing", "./d.aif", "d.wav"});
  EXPECT_EQ(withoutTimes(again),
            R"({"schema":1,"input":"./d.aif","output":"./d.wav","direction":"aiff-to-wav",)"
            R"("skipped":true,"warnings":[]})"
            "\n"
            R"({"schema":1,"input":"d.wav","direction":"wav-to-aiff","warnings":[],"error":)"
            R"({"code":"input-clash","values":["d.aif"],"text":"'d.aif' is to be converted as )"
            "well – use --to, --subfolder or --overwrite-inputs.\"}}\n");
  in.write("notes.txt", "");
  EXPECT_EQ(run({"--json", "notes.txt"}).output, "") << "objects only";
  EXPECT_EQ(screenOf({"--json", name + ".wav"}, 0, [] {}).find("\u202E"), std::string::npos);
}

TEST_F(Program, SparesTheInputsOfItsOwnRun) {
  writeWav("x.wav");
  in.write("x.aif", aiff({comm({.frames = 1}), ssnd({3, 4})}));
  writeWav("y.wav");
  const auto inputs = [&] { return readText(in / "x.wav") + readText(in / "x.aif"); };
  const std::string before = inputs();
  const std::string ways =
      " is to be converted as well – use --to, --subfolder or --overwrite-inputs.\n";
  const Outcome refused = run({"--overwrite", "."});
  EXPECT_EQ(refused.output,
            "✗ x.aif: 'x.wav'" + ways + "✗ x.wav: 'x.aif'" + ways + "y.wav => y.aif" + summary);
  EXPECT_EQ(run({"--overwrite", "--subfolder", "x.wav", "x.aif"}).status, 0);
  EXPECT_EQ(run({"x.wav", "./x.aif"}).status, 0) << "numbered names";
  EXPECT_EQ(inputs(), before);
  EXPECT_EQ(run({"--overwrite", "--to", "wav", "x.aif", "y.wav"}).output,
            "x.aif => x.wav" + summary);
  writeWav("x.wav", {5, 6});
  EXPECT_EQ(run({"--overwrite", "--to", "aiff", "."}).status, 0);
  EXPECT_EQ(readFile(in / "x.aif").back(), 5);
  writeWav("x.wav", {7, 8});
  EXPECT_EQ(run({"--overwrite-inputs", "x.wav", "x.aif"}).status, 0);
  EXPECT_EQ(readFile(in / "x.aif").back(), 7);
  EXPECT_EQ(run({"--to", "1", "x.wav"}).status, 2);
  const Outcome wrong = run({"--to", "mp3", "x.wav"});
  EXPECT_EQ(wrong.status, 2);
  EXPECT_EQ(wrong.errors.find("--to: 'mp3' is none of aiff, wav\n"), 0U) << wrong.errors;

  writeWav("y.wave", {3, 4});
  EXPECT_EQ(run({"y.wav", "y.wave"}).output,
            "y.wav => y (1).aif" + summary + "y.wave => y (2).aif" + summary);
  EXPECT_EQ(run({"--overwrite", "y.wav", "y.wave"}).status, 0);
  EXPECT_EQ(readFile(in / "y.aif").back(), 3) << "the later one stays";
}

TEST_F(Program, ADryRunSaysWhatTheRunWouldDoAndTouchesNothing) {
  const std::vector<std::vector<std::string>> runs = {
      {},
      {"--subfolder"},
      {"--subfolder", "--overwrite", "--safe"},
      {"--overwrite"},
      {"--overwrite-inputs"},
      {"--overwrite-inputs", "--skip-existing", "--preserve-times"},
      {"--output", "new/Out/"},
      {"--to", "aiff", "--safe"},
      {"--output", "kit/AIFF", "--overwrite"},
  };
  const std::string longName(250, 'x');
  for (std::vector<std::string> arguments : runs) {
    const TemporaryFolder folder;
    for (const char* name : {"a.wav", "a.wave", "kit/a.wav", "kit/a.aif/b.wav", "c.aif"})
      folder.write(name, wav({fmt({}), data({1, 2, 3}), cue({{1, 0}})}));
    for (const char* name : {"a.aif", "kit/a.aiff", "kit/c.wav", "kit/AIFF/a.aif"})
      folder.write(name, aiff({comm({.frames = 1}), ssnd({3, 4})}));
    for (const std::string place : {"", "shut/"})
      for (const std::string extension : {".wav", ".wave"})
        folder.write((place + longName).append(extension), wav({fmt({}), data({})}));
    folder.write("shut/" + longName + ".aif", "");
    fs::permissions(folder / "shut", fs::perms::owner_read | fs::perms::owner_exec);
    folder.write("broken.wav", "");
    fs::create_symlink("gone", folder / "AIFF");
    fs::create_symlink(".", folder / "WAV");
    const auto start = [&] { return Process(folder.path(), arguments).finish(); };
    const auto state = [&] {
      std::string all;
      for (const auto& entry : fs::recursive_directory_iterator(folder.path()))
        if (!entry.is_symlink())
          all += line(entry.path().native(), identityOf(entry.path())->inode, " ",
                      static_cast<std::int64_t>(entry.last_write_time().time_since_epoch().count()),
                      "\n");
      return all;
    };
    arguments.insert(arguments.begin(), CORVANA_CLI);
    arguments.insert(arguments.end(), {"--dry-run", ".", "kit", "a.wav"});
    SCOPED_TRACE(testing::PrintToString(arguments));
    const std::string before = state();
    const Outcome dry = start();
    EXPECT_EQ(state(), before);
    std::erase(arguments, "--dry-run");
    const Outcome real = start();
    EXPECT_EQ(dry.output, real.output);
    EXPECT_EQ(dry.status, real.status);
    EXPECT_NE(state(), before);
    fs::permissions(folder / "shut", fs::perms::owner_all);
  }
}

TEST_F(Program, KeepsNamesAndTextsAndNamesWhatIsLeftOut) {
  const ByteBuffer lists =
      join({list("adtl", {cueText("labl", 7, "Verse")}),
            list("INFO", {wavChunk("INAM", text("Title"))}), wavChunk("bext", {1})});
  in.write("a.wav", wav({fmt({}), data({1, 2}), cue({{7, 1}}), lists}));
  const std::string plain = "a.wav => a.aif  [16-bit, mono, 44100 Hz, 1 marker]\n";
  const struct {
    std::vector<std::string> arguments;
    std::string log, kept;
    int status = 0;
  } cases[] = {
      {{}, plain, "Cue 7"},
      {{"--no-loops"}, plain + "   Left out: chunks 'LIST adtl', 'LIST INFO', 'bext'.\n", "Cue 7"},
      {{"--reversible"}, plain, "Cue 7VerseTitle"},
      {{"--dry-run"}, plain + "   Left out: chunks 'LIST adtl', 'LIST INFO', 'bext'.\n", ""},
      {{"--keep", "names"},
       plain + "   ⚠\uFE0E Left out: chunks 'LIST INFO', 'bext'.\n",
       "Verse",
       3},
      {{"--keep=NAMES,texts"}, plain + "   ⚠\uFE0E Left out: chunks 'bext'.\n", "VerseTitle", 3},
      {{"--keep", "texts", "--keep", "names", "--dry-run"},
       plain + "   ⚠\uFE0E Left out: chunks 'bext'.\n",
       "",
       3},
      {{"--keep", "tunes"}, "", "", 2},
      {{"--keep", "names,1"}, "", "", 2},
  };
  for (const auto& c : cases) {
    std::vector<std::string> arguments = c.arguments;
    arguments.insert(arguments.end(), {"--strict", "--verify", "a.wav"});
    fs::remove(in / "a.aif");
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.output, c.log);
    EXPECT_EQ(outcome.status, c.status) << outcome.errors;
    std::string found;
    const ByteBuffer output = c.kept.empty() ? ByteBuffer() : readFile(in / "a.aif");
    for (const std::string name : {"Cue 7", "Verse", "Title"})
      if (std::search(output.begin(), output.end(), name.begin(), name.end()) != output.end())
        found += name;
    EXPECT_EQ(found, c.kept);
    if (c.kept.empty()) continue;
    arguments = c.arguments;
    arguments.insert(arguments.begin(), {"verify", "a.wav", "a.aif"});
    EXPECT_EQ(run(arguments).status, 0);
  }
}

TEST_F(Program, BuildsTheTreeElsewhereAndBringsItUpToDate) {
  for (const char* name : {"Kit/Low/a.wav", "Kit/a.wav", "Kit/Out/old.wav", "b.wav"})
    writeWav(name);
  const timespec written{6'000'000'000, 123'456'789};  // in the year 2160
  setTimes(FileDescriptor(::open((in / "Kit/a.wav").c_str(), O_WRONLY)), {written, written});
  const std::vector<std::string> update = {"--output", "Kit/Out",     "--skip-existing",  "--to",
                                           "aiff",     "--overwrite", "--preserve-times", "Kit/",
                                           "Kit/./",   "b.wav"};
  const auto status = [](const char* done, const char* skipped) {
    return "Done – " + std::string(done) + " processed. " + skipped + " skipped.\n";
  };
  EXPECT_EQ(run(update).errors, "Done – 5 files processed.\n");
  for (const char* name : {"Kit/Low/a.aif", "Kit/a.aif", "Low/a.aif", "a.aif", "b.aif"})
    EXPECT_TRUE(fs::exists(in / "Kit/Out" / name)) << name;
  EXPECT_EQ(identityOf(in / "Kit/Out/a.aif")->modified, 6'000'000'000'123'456'789);
  EXPECT_EQ(run(update).errors, status("0 files", "5 files")) << "its own folder is not searched";
  fs::last_write_time(in / "Kit/Low/a.wav", fs::file_time_type::clock::now());
  fs::resize_file(in / "Kit/Out/b.aif", 50);
  EXPECT_EQ(run(update).errors, status("3 files", "2 files")) << "older or incomplete";
  for (const char* contradiction : {"--subfolder", "--output=", "--output=b.wav"})
    EXPECT_EQ(run({"--output", "x", contradiction, "b.wav"}).status, 2) << contradiction;
}

TEST_F(Program, TwoProgramsOnOneFolderTakeNothingFromEachOther) {
  for (int i = 0; i < 100; ++i)
    writeWav(std::to_string(i) + ".wav");
  const Process first = start({"--subfolder", "."});
  const Process second = start({"--subfolder", "."});
  const std::string logs = first.finish().output + second.finish().output;
  std::size_t outputs = 0;
  for (const std::string& name : in.files()) {
    if (!name.starts_with("AIFF/")) continue;
    ++outputs;
    EXPECT_EQ(readFile(in / name), readFile(in / "AIFF/0.aif"));
    EXPECT_NE(logs.find(" => " + name.substr(5) + summary), std::string::npos) << name;
  }
  EXPECT_EQ(outputs, 200U);
}

TEST_F(Program, FindsFilesDeeperThanAnyPathIsLong) {
  const fs::path name(std::string(250, 'd'));
  writeWav("top/deep.wav");
  for (int depth = 0; depth < 80; ++depth) {
    fs::create_directory(in / "next");
    fs::rename(in / "top", in / "next" / name);
    fs::rename(in / "next", in / "top");
  }
  EXPECT_EQ(run({"--subfolder", "top"}).output, "deep.wav => deep.aif" + summary);
  for (int depth = 0; depth < 80; ++depth) {
    fs::rename(in / "top" / name, in / "next");
    fs::remove(in / "top");
    fs::rename(in / "next", in / "top");
  }
  EXPECT_TRUE(fs::exists(in / "top/AIFF/deep.aif"));
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

TEST_F(Program, StreamsAndFilesMayBeClosedOrFull) {
  writeWav("🎹.wav");
  const std::string log = "🎹.wav => 🎹.aif" + summary;
  const std::string incomplete = "corvana-cli: the log could not be written completely\n";
  const Prepare breakPipe = [] {
    int ends[2];
    if (::pipe(ends) != 0 || ::dup2(ends[1], 1) < 0) ::_exit(98);
    ::close(ends[0]);
  };
  const Prepare limitFiles = [] {
    const rlimit small{40, 40};  // bytes of any file, so the log goes nowhere
    ::setrlimit(RLIMIT_FSIZE, &small);
    ::dup2(::open("/dev/null", O_WRONLY), 1);
    ::close(2);
  };
  const struct {
    Prepare prepare;
    int status;
    std::string output, errors;
  } cases[] = {
      {breakPipe, 1, "", incomplete},
      {[] { ::dup2(::open("/dev/full", O_WRONLY), 1); }, 1, "", incomplete},
      {[] { ::close(0); }, 0, log, ""},
      {[] { ::close(1); }, 1, "", incomplete},
      {[] { ::close(2); }, 0, log, ""},
      {limitFiles, 1, "", ""},
  };
  for (const auto& c : cases) {
    const Outcome outcome = run({"--quiet", "--overwrite", "🎹.wav"}, c.prepare);
    EXPECT_EQ(outcome.status, c.status);
    EXPECT_EQ(outcome.output, c.output);
    EXPECT_EQ(outcome.errors, c.errors);
    EXPECT_EQ(firstBytes(readFile(in / "🎹.aif"), 4), text("FORM")) << "no log among the samples";
  }
  EXPECT_EQ(run({"--help"}, breakPipe).status, 1);
}

TEST_F(Program, KeepsItsLinesOnATerminal) {
  const std::string hostile = "\x1b]0;pwn\a\n✗ forged";
  writeWav(hostile + ".wav");
  const std::string big = "x音音音音🎹🎹🎹🎹音音音音.wav";
  writeHugeWav(big);
  bool isStopped = false;
  const std::string screen = screenOf(
      {hostile + ".wav", big}, 130,
      [] {
        ::setenv("LC_ALL", "C", 1);
        ::setenv("NO_COLOR", "1", 1);
      },
      [&](pid_t id, const std::string& shown) {
        if (!isStopped && shown.find("x音") != std::string::npos)
          isStopped = ::kill(id, SIGINT) == 0;
      });

  const std::string shown = "\uFFFD]0;pwn\uFFFD\uFFFD✗ forged";
  EXPECT_NE(screen.find("\x1b[K" + shown + ".wav => " + shown + ".aif  [16"), std::string::npos);
  EXPECT_NE(screen.find("Converting x音音"), std::string::npos) << screen;
  constexpr std::string_view erase = "\r\x1b[K";
  for (std::size_t at = screen.find(erase); at != std::string::npos;) {
    const std::size_t next = screen.find(erase, at + 1);
    const std::string drawn = screen.substr(at + erase.size(), next - at - erase.size());
    EXPECT_EQ(drawn.find('\x1b'), std::string::npos);
    EXPECT_TRUE(!drawn.starts_with('[') || drawn == firstColumns(drawn, 59)) << drawn;
    at = next;
  }
}

TEST_F(Program, ColoursTheSignsOfTheLogOnATerminalOnly) {
  writeWav("a.wav", {1, 2, 3});
  in.write("b.wav", "");
  const struct {
    const char *terminal, *noColour;
    bool isColoured;
  } cases[] = {{"xterm", "", true}, {"xterm", "0", false}, {"dumb", "", false}, {"", "", false}};
  for (const auto& c : cases) {
    const Prepare prepare = [&c] {
      ::setenv("TERM", c.terminal, 1);
      ::setenv("NO_COLOR", c.noColour, 1);
    };
    const std::string screen = screenOf({"--quiet", "a.wav", "b.wav"}, 1, prepare);
    const std::string shown =
        "]\r\n   \x1b[33m⚠\uFE0E\x1b[0m Incomplete last frame discarded.\r\n"
        "\x1b[31m✗\x1b[0m b.wav: ";
    EXPECT_EQ(screen.find(shown) != std::string::npos, c.isColoured) << screen;
    EXPECT_EQ(screen.find('\x1b') != std::string::npos, c.isColoured) << screen;
    EXPECT_EQ(run({"a.wav"}, prepare).output.find('\x1b'), std::string::npos);
  }
}

TEST_F(Program, StopsWithinASecond) {
  writeHugeWav("big.wav");
  writeWav("next.wav");
  const std::string stopped = "✗ big.wav: Stopped – 'big.aif' is incomplete.\n";
  for (const auto& [signal, jobs] :
       std::map<int, std::string>{{SIGINT, "1"}, {SIGTERM, "2"}, {SIGHUP, "1"}}) {
    const Process process = start({"--overwrite", "--jobs", jobs, "big.wav", "next.wav"});
    const bool isParallel = jobs == "2";
    while (!fs::exists(in / "big.aif") || fs::file_size(in / "big.aif") < 5'000'000 ||
           fs::exists(in / "next.aif") != isParallel)
      std::this_thread::sleep_for(1ms);
    const auto asked = std::chrono::steady_clock::now();
    ::kill(process.id, signal);
    const Outcome outcome = process.finish();
    EXPECT_LT(std::chrono::steady_clock::now() - asked, 1s);
    EXPECT_EQ(outcome.status, 128 + signal);
    EXPECT_EQ(outcome.output.substr(0, stopped.size()), stopped);
    EXPECT_EQ(fs::remove(in / "next.aif"), isParallel);
    fs::remove(in / "big.aif");
  }
  in.write("big.aif", "older");
  const Process process = start({"--json", "--safe", "--overwrite", "--to", "aiff", "big.wav"});
  while (in.files().size() < 4)
    std::this_thread::sleep_for(1ms);
  EXPECT_EQ(in.files()[0][0], '.') << "no search finds it";
  ::kill(process.id, SIGINT);
  EXPECT_NE(process.finish().output.find(
                R"({"code":"stopped","values":[],"text":"Stopped – 'big.aif' is not made."})"),
            std::string::npos);
  EXPECT_EQ(fs::file_size(in / "big.aif"), 5U) << "the older one";
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
    const Process process = start({"a.wav"}, [&c] {
      int ends[2];
      if (::pipe(ends) != 0 || ::fcntl(ends[1], F_SETFL, O_NONBLOCK) != 0) ::_exit(98);
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
      ::kill(process.id, signal);
    }
    EXPECT_EQ(process.finish().status, c.status);
    const auto duration = std::chrono::steady_clock::now() - asked;
    EXPECT_TRUE(duration >= c.minTime && duration <= c.maxTime) << c.status;
    fs::remove(in / "a.aif");
  }
}

TEST_F(Program, SpeaksTheUsersLanguage) {
  if (!fs::exists(fs::path(CORVANA_CLI).parent_path() / "locale/de/LC_MESSAGES/Corvana.mo"))
    GTEST_SKIP() << "built without the German catalogue";
  in.write("bad.wav", "");
  const Prepare wanted = [] { ::setenv("LANGUAGE", "de", 1); };
  const Prepare notGenerated = [] {
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
