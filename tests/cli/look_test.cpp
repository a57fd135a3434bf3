// The verbs that look at files: what they print, in both forms, and how they end.

#include <gtest/gtest.h>

#include "support/audio_builder.hpp"
#include "support/program.hpp"

namespace corvana {
namespace {

using namespace test;

class Verbs : public testing::Test {
 protected:
  Outcome run(std::vector<std::string> arguments,
              const std::function<void()>& prepare = nullptr) const {
    arguments.insert(arguments.begin(), CORVANA_CLI);
    return Process(in.path(), std::move(arguments), prepare).finish();
  }

  const TemporaryFolder in;
};

ByteBuffer list(std::string_view type, std::initializer_list<ByteBuffer> chunks) {
  return wavChunk("LIST", join({text(type), join(chunks)}));
}

/// Everything that info knows of a WAV file, in samples that cannot be converted.
ByteBuffer floatingPointWav() {
  ByteBuffer sampler = smpl(61, 0x40000000, {{4, 1, 100, 199, 3}, {0, 9, 5, 4, 0}});
  sampler = patched(sampler, 8 + 36 + 16, le(0x80000000, 4));
  return wav({fmt({.tag = 3, .channels = 2, .rate = 1000, .blockAlign = 8, .bits = 32}), sampler,
              cue({{4, 100}, {7, 900}}),
              list("adtl", {wavChunk("labl", join({le(7, 4), text("Größe\n\x1b[2J\0x")})),
                            wavChunk("note", join({le(7, 4), text("a note")})),
                            wavChunk("ltxt", join({le(4, 4), le(50, 4), ByteBuffer(12)}))}),
              list("INFO", {wavChunk("INAM", text("Na\xEFve\r\ntwo lines")), wavChunk("IART", {})}),
              inst(InstrumentChunk{60, 7, -3, 10, 90, 1, 127}),
              firstBytes(test::data(ByteBuffer(8000)), 4008)});
}

/// The same of AIFF-C.
ByteBuffer littleEndianAiff() {
  const Common common{.channels = 1, .frames = 9, .compression = "sowt\x04tiny"};
  return aiff({aiffChunk("NAME", text("Bell")), aiffChunk("(c) ", {0xA9, ' ', '1', '9', '9', '1'}),
               aiffChunk("COMT", join({be(2, 2), be(0, 6), be(3, 2), text("odd"), ByteBuffer(1),
                                       be(0, 6), be(4, 2), text("even")})),
               comm(common), mark({{1, 2, "in"}, {2, 6, "out"}}), aiffChunk("A\033BC", {1}),
               inst(AiffInstrument{69, -12, 21, 108, 1, 127, 200, {2, 1, 2}, {1, 1, 5}}),
               ssnd(ByteBuffer(16))},
              "AIFC");
}

TEST_F(Verbs, InfoShowsWhatAFileHolds) {
  in.write("a.wav", floatingPointWav());
  in.write("b.aifc", littleEndianAiff());
  in.write("c.wav", "short");
  const Outcome outcome = run({"info", "--middle-c", "c3", "a.wav", "b.aifc", "c.wav"});
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, R"~(a.wav
  Format      WAV, 32-bit floating point, stereo, 1000 Hz
  Length      0.500 s, 500 frames, 4338 bytes
  Root key    61 C#3 (-25 ct)
              smpl: 61 C#3, pitch fraction 0x40000000 = 25.00 ct above
              inst: 60 C3, fine tune +7 ct
              ⚠︎ smpl and inst disagree by 132.00 ct.
  Gain        -3 dB
  Keys        10 A#-2 – 90 F#5
  Velocities  1 – 127
  Loops       1  alternating     100 – 199  100 frames  0.100 s  3 times, cue point 4, fraction 0.5000 frames
              2  unknown type 9    5 –   4    0 frames  0.000 s  endless, fraction 0.0000 frames
  Cue points  4  100  0.100 s  50 frames
              7  900  0.900 s  Größe��[2J: a note
  Texts       INAM  Naïve
                    two lines
  Chunks      fmt   at 12     16 bytes
              smpl  at 36     84 bytes
              cue   at 128    52 bytes
              LIST  at 188    74 bytes
              LIST  at 270    36 bytes
              inst  at 314     7 bytes
              data  at 330  8000 bytes  only 4000 of them are there
  Conversion  ✗ Unsupported format: floating-point WAV

b.aifc
  Format      AIFF-C, 16-bit PCM, mono, 44100 Hz ('sowt', tiny)
  Length      0.000 s, 8 of 9 declared frames, 208 bytes
  Root key    69 A3 (-12 ct)
              INST: 69 A3, detune -12 ct
  Gain        +200 dB
  Keys        21 A-1 – 108 C7
  Velocities  1 – 127
  Loops       Sustain  alternating  2 – 5  4 frames  0.000 s  endless, markers 1 and 2
              Release  forward      2 – ?                     endless, markers 1 and 5
  Markers     1  2  0.000 s  in
              2  6  0.000 s  out
  Texts       NAME  Bell
              (c)   © 1991
              COMT  odd
              COMT  even
  Chunks      NAME  at 12    4 bytes
              (c)   at 24    6 bytes
              COMT  at 38   26 bytes
              COMM  at 72   27 bytes
              MARK  at 108  22 bytes
              A?BC  at 138    1 byte
              INST  at 148  20 bytes
              SSND  at 176  24 bytes
  Conversion  => WAV  [16-bit, mono, 44100 Hz, root key 69 (-12 ct), 1 loop]
              ⚠︎ The SSND chunk contains less data than declared – 8 instead of 9 frames used.
              ⚠︎ Release loop: the associated markers are missing – skipped.
              ⚠︎ A gain of 200 dB does not fit into the WAV inst chunk – clamped.
              Left out: chunks 'NAME', '(c) ', 'COMT', 'A?BC'.

c.wav
  Format      neither WAV nor AIFF
  Length      5 bytes
  Conversion  ✗ Unsupported format: file is too short
)~");
}

TEST_F(Verbs, CheckWritesALineForEveryFinding) {
  in.write("Sub/a.wav", wav({fmt({}), test::data(ByteBuffer(16)),
                             smpl(60, 0, {{0, 0, 4, 3, 0}, {0, 0, 0, 8, 0}})}));
  in.write("Sub/b.aif", aiff({comm({.frames = 8}), mark({{1, 0, ""}}), ssnd(ByteBuffer(16)),
                              inst(AiffInstrument{60, 0, 0, 127, 1, 127, 0, {1, 1, 2}, {}})}));
  in.write("Sub/good.wav", wav({fmt({}), test::data({})}));
  const Outcome outcome = run({"check", "Sub"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output,
            "Sub/a.wav: error: Loop 1 is empty: frames 4 to 3. [loop-empty]\n"
            "Sub/a.wav: warning: Loop 2 ends at frame 8, the number of frames; the last one is 7. "
            "Ends belong to the loop. [loop-end-exclusive]\n"
            "Sub/b.aif: error: Sustain loop refers to marker 2, which is not there. "
            "[loop-marker-missing]\n");
  EXPECT_EQ(run({"check", "Sub/good.wav"}).status, 0);
  EXPECT_EQ(run({"check", "--json", "Sub/good.wav"}).output,
            R"({"schema":1,"input":"Sub/good.wav","errorCount":0,"warningCount":0,"noteCount":0,)"
            R"("findings":[]})"
            "\n");
}

TEST_F(Verbs, NoFileStopsTheOthers) {
  const std::string name = "\xFF.wav";
  in.write(name, wav({fmt({}), test::data({})}));
  in.write("notes.txt", "");
  fs::create_directory(in / "empty");
  fs::create_directory(in / "folder.wav");
  fs::create_symlink("/dev/null", in / "null.wav");
  for (const std::string verb : {"info", "check"}) {
    const Outcome outcome = run({verb, "none.wav", "null.wav", "notes.txt", name});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(verb == "check" || outcome.output.starts_with(name + "\n  Format ")) << "bytes";
    for (const char* error :
         {"corvana-cli: none.wav: No such file", "'null.wav'", "notes.txt: Not"})
      EXPECT_NE(outcome.errors.find(error), std::string::npos) << outcome.errors;
    const Outcome lines = run({verb, "--json", "null.wav", name});
    EXPECT_TRUE(lines.output.starts_with(
        R"({"schema":1,"input":"null.wav","error":{"code":"system-error","values":[],"text":")"));
    EXPECT_NE(lines.output.find("\"input\":\"\uFFFD.wav\",\"inputBytes\":\"ff2e776176\","),
              std::string::npos)
        << lines.output;
    EXPECT_EQ(run({verb, name}).status, 0);
    EXPECT_EQ(run({verb, "empty"}).errors, "corvana-cli: No WAV or AIFF files found.\n");
    EXPECT_EQ(run({verb}).status, 2);
    EXPECT_EQ(run({verb, "--to", "wav", name}).status, 2);
    EXPECT_NE(run({verb, "--help"}).output.find("Examples:"), std::string::npos);
  }
  EXPECT_EQ(run({"info", "--middle-c", "C6", name}).status, 2);
  EXPECT_EQ(run({"info", "--middle-c", "4", name}).status, 2);
  in.write("info", wav({fmt({}), test::data({})}));
  EXPECT_NE(run({"./info"}).errors.find("./info: Not a WAV"), std::string::npos) << "no verb";
}

TEST_F(Verbs, JsonIsValidByItsSchema) {
  if (std::system("python3 -c 'import jsonschema'") != 0) GTEST_SKIP() << "no python3-jsonschema";
  ASSERT_EQ(std::system((CORVANA_EXAMPLES " '" + in.path().native() + "'").c_str()), 0);
  in.write("a.wav", floatingPointWav());
  in.write("b.aifc", littleEndianAiff());
  in.write("c.wav", "short");
  in.write("d.aif", aiff({comm({.rate = "7F FF FF FF FF FF FF FF FF FF"}), ssnd({})}));
  in.write("\xFF.wav", wav({fmt({.tag = 85}), wavChunk("\xFF\0ab", {1})}));
  in.write("f.wav", wav({fmt({}), test::data({1, 2}), smpl(60, 0, {{0, 0, 0, 0}})}));
  in.write("f.aif", "");
  fs::create_symlink("gone", in / "e.wav");
  const std::pair<std::string, std::string> runs[] = {
      {"info", "info ."},
      {"info", "info --any-encoding --keep names,texts --root-from-name --no-loops ."},
      {"check", "check ."},
      {"conversion", "--dry-run --overwrite ."},
      {"conversion", "--subfolder ."},
      {"conversion", "--subfolder --skip-existing ."},
      {"verify", "verify f.wav AIFF/f.aif"},
      {"verify", "verify --reversible f.wav AIFF/f.aif"},
      {"verify", "verify f.wav f.aif"},
      {"verify", "verify f.wav d.aif"},
      {"verify", "verify '\xFF.wav' d.aif"},
      {"verify", "verify gone.wav d.aif"},
  };
  for (const auto& [schema, arguments] : runs) {
    std::string line = "cd '" + in.path().native() + "' && '" CORVANA_CLI "' ";
    line += arguments;
    line +=
        " --json | '" CORVANA_SOURCES "/tests/cli/valid-json' '" CORVANA_SOURCES "/docs/schemas/";
    line += schema;
    line += ".schema.json'";
    EXPECT_EQ(std::system(line.c_str()), 0) << line;
  }
}

}  // namespace
}  // namespace corvana
