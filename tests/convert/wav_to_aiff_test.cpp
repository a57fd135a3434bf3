#include <gtest/gtest.h>

#include "convert/map_wav_to_aiff.hpp"
#include "support/audio_builder.hpp"
#include "support/conversion.hpp"

namespace corvana {
namespace {

using namespace test;

// A file with two of everything, by chunks.
const ByteBuffer fmtChunk = fmt({.rate = 48000, .blockAlign = 1, .bits = 8});
const ByteBuffer dataChunk = data(bytes("00 80 FF 01 7F"));
const ByteBuffer smplChunk = smpl(60, 0x80000000, {{9, 1, 0, 1, 0}, {0, 0, 1, 2, 0}});
const ByteBuffer cueChunk = cue({{77, 1}, {5, 4}, {66, 5}});
const ByteBuffer instChunk = inst(InstrumentChunk{61, 10, -6, 0, 130, 0, 200});
const ByteBuffer twoOfEach = wav({fmtChunk, dataChunk, smplChunk, cueChunk, instChunk});

TEST(WavToAiff, WritesExactlyTheseBytes) {
  const Converted plain = convert(wav({fmt({}), data(bytes("01 02 03 04 05 06"))}));
  EXPECT_EQ(plain.file,
            bytes("'FORM' 00 00 00 34 'AIFF' 'COMM' 00 00 00 12 00 01 00 00 00 03 00 10 "
                  "40 0E AC 44 00 00 00 00 00 00 "
                  "'SSND' 00 00 00 0E 00 00 00 00 00 00 00 00 02 01 04 03 06 05"));
  EXPECT_EQ(plain.summary, "16-bit, mono, 44100 Hz");

  const Converted full = convert(twoOfEach);
  EXPECT_EQ(full.file,
            bytes("'FORM' 00 00 00 C0 'AIFF' 'COMM' 00 00 00 12 00 01 00 00 00 05 00 08 "
                  "40 0E BB 80 00 00 00 00 00 00 "
                  "'MARK' 00 00 00 68 00 06 "
                  "00 01 00 00 00 00 0C 'Loop 1 Start' 00 "
                  "00 02 00 00 00 02 0A 'Loop 1 End' 00 "
                  "00 03 00 00 00 01 0C 'Loop 2 Start' 00 "
                  "00 04 00 00 00 03 0A 'Loop 2 End' 00 "
                  "00 05 00 00 00 04 05 'Cue 5' "
                  "00 06 00 00 00 05 06 'Cue 66' 00 "
                  "'INST' 00 00 00 14 3C CE 00 7F 01 7F FF FA 00 02 00 01 00 02 00 01 00 03 00 04 "
                  "'SSND' 00 00 00 0D 00 00 00 00 00 00 00 00 80 00 7F 81 FF 00"));
  EXPECT_EQ(full.summary, "8-bit, mono, 48000 Hz, root key 60 (-50 ct), 2 loops, 6 markers");
  EXPECT_EQ(full.warnings, "");
}

TEST(WavToAiff, KnowsTheLayoutsOfOtherPrograms) {
  const ByteBuffer list = bytes("'LIST' 0F 00 00 00 'INFOISFT' 03 00 00 00 'abc' 00");
  const ByteBuffer bext = wavChunk("bext", ByteBuffer(602, 'x'));
  const ByteBuffer longFormat = wavChunk("fmt ", join({bodyOf(fmtChunk), bytes("00 00")}));
  const ByteBuffer specific =
      patched(wavChunk("smpl", join({bodyOf(smplChunk), bytes("'data'")})), 8 + 32, bytes("04"));
  const ByteBuffer streamed = join({bytes("'data' FF FF FF FF"), firstBytes(bodyOf(dataChunk), 5)});
  const struct {
    const char* name;
    ByteBuffer file, same = twoOfEach;
  } cases[] = {
      {"smpl ahead of fmt", wav({smplChunk, fmtChunk, dataChunk, instChunk, cueChunk})},
      {"data ahead of fmt", wav({instChunk, cueChunk, dataChunk, fmtChunk, smplChunk})},
      {"LIST and bext between",
       wav({bext, fmtChunk, list, dataChunk, cueChunk, list, smplChunk, instChunk})},
      {"fmt with an empty extension", wav({longFormat, dataChunk, smplChunk, cueChunk, instChunk})},
      {"the sampler's own data", wav({fmtChunk, dataChunk, specific, cueChunk, instChunk})},
      {"streamed",
       patched(wav({fmtChunk, smplChunk, cueChunk, instChunk, streamed}), 4, le32({0}))},
      {"not padded at the end", firstBytes(twoOfEach, twoOfEach.size() - 1)},
      {"zeros behind", join({twoOfEach, ByteBuffer(1001)})},
      {"not padded", wav({fmtChunk, dataChunk, firstBytes(instChunk, 15), cueChunk, smplChunk}),
       wav({fmtChunk, dataChunk, instChunk})},
  };
  for (const auto& c : cases)
    EXPECT_EQ(convert(c.file).file, convert(c.same).file) << c.name;
}

TEST(WavToAiff, MapsLoopsAndCuePoints) {
  const auto check = [](const char* name, const std::vector<SampleLoop>& loops,
                        const std::vector<CuePoint>& cuePoints, const std::string& expected,
                        const std::string& warnings = "") {
    const Converted converted =
        convert(wav({fmtChunk, data(ByteBuffer(1000)), smpl(60, 0, loops), cue(cuePoints)}));
    EXPECT_EQ(found(parseAiff(converted.file)), expected + " 60 0 0-127 1-127 0") << name;
    EXPECT_EQ(converted.warnings, warnings) << name;
  };
  const auto oneLoop = [](const char* start, const char* end, const char* mode) {
    return line("1 Loop 1 Start @", start, ", 2 Loop 1 End @", end, ", (", mode, " 1 2)(0 0 0)");
  };
  const char* none = "(0 0 0)(0 0 0)";
  check("none", {}, {}, none);
  check("alternating", {{0, 1, 0, 0, 0}}, {}, oneLoop("0", "1", "2"));
  check("end just behind the last frame", {{0, 0, 5, 1000, 0}}, {}, oneLoop("5", "1000", "1"));
  check("end behind the last frame", {{0, 0, 5, 4294967295, 0}}, {}, oneLoop("5", "1000", "1"));
  check("start behind the last frame", {{0, 0, 1000, 1001, 0}}, {}, none,
        "Loop 1 is invalid (start 1000, end 1001) – skipped.\n");
  check("reversed, then a good one", {{0, 2, 51, 50, 7}, {0, 0, 7, 8, 0}}, {},
        "1 Loop 2 Start @7, 2 Loop 2 End @9, (1 1 2)(0 0 0)",
        "Loop 1 is invalid (start 51, end 50) – skipped.\n");
  check("backward with a play count", {{0, 2, 0, 9, 3}}, {}, oneLoop("0", "10", "1"),
        "Loop 1: AIFF has no backward loops – converted to a forward loop.\n"
        "Loop 1: a play count of 3 cannot be stored in AIFF (the loop plays indefinitely).\n");
  check("unknown type", {{0, 4294967295, 0, 9, 0}}, {}, oneLoop("0", "10", "1"),
        "Loop 1: unknown loop type 4294967295 – converted to a forward loop.\n");
  check("three", {{0, 0, 0, 9, 0}, {0, 1, 10, 19, 0}, {0, 0, 20, 29, 0}}, {},
        "1 Loop 1 Start @0, 2 Loop 1 End @10, 3 Loop 2 Start @10, 4 Loop 2 End @20, "
        "5 Loop 3 Start @20, 6 Loop 3 End @30, (1 1 2)(2 3 4)",
        "AIFF supports only 2 loops (sustain/release) – loop 3 and above are kept as markers "
        "only.\n");
  check("cue points where no marker lies", {},
        {{9, 100}, {8, 200}, {7, 100}, {4294967295, 1000}, {4, 1001}, {3, 0}, {2, 150}, {1, 200}},
        "1 Cue 9 @100, 2 Cue 8 @200, 3 Cue 4294967295 @1000, 4 Cue 3 @0, 5 Cue 2 @150, "
        "(0 0 0)(0 0 0)");
  check("cue points at loop points", {{0, 0, 0, 9, 0}}, {{1, 10}, {2, 9}, {3, 0}},
        "1 Loop 1 Start @0, 2 Loop 1 End @10, 3 Cue 2 @9, (1 1 2)(0 0 0)");
}

TEST(WavToAiff, ReadsAllRecordsUpToTheLastMarkerID) {
  std::vector<CuePoint> points(300'000, CuePoint{0, 50'001});
  for (std::uint32_t i = 40'000; i > 0; --i)
    points.push_back({i, i});
  std::vector<SampleLoop> loops(300'000, SampleLoop{0, 0, 9, 1, 0});
  loops.resize(320'000, SampleLoop{0, 0, 0, 9, 0});
  loops.push_back(loops.front());
  const ByteBuffer file = join({wav({fmtChunk, dataChunk, cue(points)}), smpl(60, 0, loops)});
  WavInfo info = parseWav(file);
  Warnings warnings;
  const AiffMetadata metadata = mapWavMetadata(info, 50'000, {}, warnings);
  EXPECT_EQ(metadata.loops.size(), 16382U) << "IDs 1 to 32764";
  ASSERT_EQ(metadata.markers.size(), 32766U) << "two cue points still fit";
  EXPECT_EQ(metadata.markers.back().id, 32766);
  EXPECT_EQ(warnings.size(), 10'001U);
  EXPECT_EQ(warningText(warnings.back(), english), "290001 further warnings.")
      << "one for all loops, none for those that are not reached";

  info.loops.reset();
  EXPECT_EQ(mapWavMetadata(info, 50'000, {}, warnings).markers.back().name, "Cue 7235");
}

TEST(WavToAiff, DerivesTheInstrument) {
  using Chunk = InstrumentChunk;
  const auto check = [](const ByteBuffer& chunks, const std::string& expected) {
    const Converted converted = convert(wav({fmtChunk, data({}), chunks}));
    EXPECT_EQ(found(parseAiff(converted.file)),
              expected.empty() ? "" : "(0 0 0)(0 0 0) " + expected);
    EXPECT_EQ(converted.warnings, "");
  };
  const auto cents = [](double c) { return static_cast<std::uint32_t>(c / 100 * 4294967296.0); };
  check({}, "");  // note, detune, keys, velocities, gain
  check(inst(Chunk{64, -7, -6, 1, 2, 3, 4}), "64 -7 1-2 3-4 -6");
  check(inst(Chunk{200, 100, -128, 130, 140, 0, 200}), "127 50 127-127 1-127 -128");
  check(inst(Chunk{0, -100, 127, 0, 0, 255, 0}), "0 -50 0-0 127-1 127");
  check(smpl(60, cents(30)), "60 -30 0-127 1-127 0");
  check(smpl(60, 0x8147AE14), "60 -50 0-127 1-127 0");  // just below 50.5 cents
  check(smpl(60, 0x8147AE15), "61 49 0-127 1-127 0");
  check(smpl(60, 0xFFFFFFFF), "61 0 0-127 1-127 0");
  check(smpl(4294967295, cents(70)), "127 30 0-127 1-127 0");
  check(join({smpl(60, cents(30)), inst(Chunk{60, 12, 1, 0, 127, 1, 127})}), "60 12 0-127 1-127 1");
  check(join({smpl(60, cents(30)), inst(Chunk{62, 12, 1, 5, 6, 7, 8})}), "60 -30 5-6 7-8 1");
  check(join({smpl(300, 0), inst(Chunk{127, 12, 0, 0, 127, 1, 127})}), "127 12 0-127 1-127 0");
}

}  // namespace
}  // namespace corvana
