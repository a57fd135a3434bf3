#include <gtest/gtest.h>

#include "support/audio_builder.hpp"
#include "support/conversion.hpp"

namespace corvana {
namespace {

using namespace test;

// A file with two of everything, by chunks.
const ByteBuffer commChunk = comm({.channels = 2, .frames = 2, .bits = 20});
const ByteBuffer samples = bytes("00 00 10 00 00 20 00 00 30 00 00 40");
const ByteBuffer ssndChunk = ssnd(samples);
const ByteBuffer markChunk =
    mark({{3, 2, "free"}, {1, 0, "in"}, {2, 2, "out"}, {4, 3, "beyond"}, {5, 1, "re"}, {6, 0, ""}});
const ByteBuffer instChunk =
    inst(AiffInstrument{60, 10, -1, 127, -5, 100, 200, {2, 5, 2}, {1, 1, 5}});
const ByteBuffer twoOfEach = aiff({commChunk, markChunk, instChunk, ssndChunk});

TEST(AiffToWav, WritesExactlyTheseBytes) {
  const Converted plain = convert(aiff({comm({.frames = 1, .bits = 24}), ssnd(bytes("12 34 56"))}));
  EXPECT_EQ(plain.file,
            bytes("'RIFF' 28 00 00 00 'WAVE' 'fmt ' 10 00 00 00 01 00 01 00 44 AC 00 00 "
                  "CC 04 02 00 03 00 18 00 'data' 03 00 00 00 56 34 12 00"));
  EXPECT_EQ(plain.summary, "24-bit, mono, 44100 Hz");

  const Converted full = convert(twoOfEach);
  EXPECT_EQ(full.file,
            bytes("'RIFF' F0 00 00 00 'WAVE' 'fmt ' 28 00 00 00 FE FF 02 00 44 AC 00 00 "
                  "98 09 04 00 06 00 18 00 16 00 14 00 03 00 00 00 "
                  "01 00 00 00 00 00 10 00 80 00 00 AA 00 38 9B 71 "
                  "'data' 0C 00 00 00 10 00 00 20 00 00 30 00 00 40 00 00 "
                  "'cue ' 34 00 00 00 02 00 00 00 "
                  "01 00 00 00 02 00 00 00 'data' 00 00 00 00 00 00 00 00 02 00 00 00 "
                  "02 00 00 00 00 00 00 00 'data' 00 00 00 00 00 00 00 00 00 00 00 00 "
                  "'smpl' 54 00 00 00 00 00 00 00 00 00 00 00 94 58 00 00 3B 00 00 00 66 66 66 E6 "
                  "00 00 00 00 00 00 00 00 02 00 00 00 00 00 00 00 "
                  "00 00 00 00 01 00 00 00 01 00 00 00 01 00 00 00 00 00 00 00 00 00 00 00 "
                  "01 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
                  "'inst' 07 00 00 00 3C 0A 7F 00 7F 01 64 00"));
  EXPECT_EQ(full.summary, "20-bit, stereo, 44100 Hz, root key 60 (+10 ct), 2 loops, 2 cue points");
  EXPECT_EQ(full.warnings, "A gain of 200 dB does not fit into the WAV inst chunk – clamped.\n");
}

TEST(AiffToWav, KnowsTheLayoutsOfOtherPrograms) {
  const ByteBuffer otherNames =
      mark({{3, 2, ""}, {1, 0, "a"}, {2, 2, "of"}, {4, 3, "abc"}, {5, 1, "even"}, {6, 0, "x"}});
  const ByteBuffer unpadded = bytes("'NAME' 00 00 00 03 'abc'");
  const ByteBuffer name = join({unpadded, {0}});
  const ByteBuffer fver = bytes("'FVER' 00 00 00 04 A2 80 51 40");
  const ByteBuffer longComm =
      aiffChunk("COMM", join({bodyOf(commChunk), bytes("'NONE' 0E 'not compressed' 00")}));
  const ByteBuffer aligned = ssnd(join({ByteBuffer(10), samples}), 10);
  const struct {
    const char* name;
    ByteBuffer file, same = twoOfEach;
  } cases[] = {
      {"COMM behind SSND", aiff({ssndChunk, commChunk, markChunk, instChunk})},
      {"INST ahead of MARK", aiff({commChunk, instChunk, markChunk, ssndChunk})},
      {"INST ahead of all, COMM at the end", aiff({instChunk, ssndChunk, markChunk, commChunk})},
      {"names of even and odd length", aiff({commChunk, otherNames, instChunk, ssndChunk})},
      {"texts between", aiff({name, commChunk, name, markChunk, instChunk, name, ssndChunk, name})},
      {"AIFF-C", aiff({fver, longComm, markChunk, instChunk, ssndChunk}, "AIFC")},
      {"AIFF with a compression type", aiff({longComm, markChunk, instChunk, ssndChunk})},
      {"aligned sound", aiff({commChunk, aligned, markChunk, instChunk})},
      {"no form size", patched(twoOfEach, 4, be(0, 4))},
      {"not padded at the end", join({twoOfEach, unpadded})},
      {"not padded", aiff({commChunk, ssndChunk, markChunk, unpadded, instChunk}),
       aiff({commChunk, ssndChunk, markChunk})},
  };
  for (const auto& c : cases)
    EXPECT_EQ(convert(c.file).file, convert(c.same).file) << c.name;
}

TEST(AiffToWav, UsesTheFramesThatAreThere) {
  const auto check = [](std::uint32_t declared, std::size_t there, std::uint32_t used) {
    const Converted converted =
        convert(aiff({comm({.frames = declared}), ssnd(ByteBuffer(there))}));
    EXPECT_EQ(Fields(converted.file, ByteOrder::little).u32(40), 2 * used);
    EXPECT_EQ(converted.progress, std::vector<double>{1.0});
    EXPECT_EQ(converted.warnings, used == declared
                                      ? ""
                                      : line("The SSND chunk contains less data than declared – ",
                                             used, " instead of ", declared, " frames used.\n"));
  };
  check(900, 2000, 900);
  check(0, 10, 0);
  check(1000, 1801, 900);
  check(4294967295, 1, 0);
}

TEST(AiffToWav, RoundsTheRate) {
  const auto check = [](const char* rate, std::uint32_t rounded, const std::string& warned) {
    const Converted converted = convert(aiff({comm({.rate = rate}), ssnd({})}));
    EXPECT_EQ(Fields(converted.file, ByteOrder::little).u32(24), rounded);
    EXPECT_EQ(converted.warnings, warned.empty()
                                      ? ""
                                      : line("Sample rate of ", warned, " Hz rounded to ", rounded,
                                             " Hz (WAV only supports whole numbers).\n"));
  };
  check("40 0D AC 43 00 00 00 00 00 00", 22050, "22049.5");
  check("40 1E EE 6B 27 FF C0 00 00 00", 4'000'000'000, "3999999999.75");
  check("40 0E AC 44 00 41 89 00 00 00", 44100, "");
  check("40 0E AC 44 00 41 8A 00 00 00", 44100, "44100.00100004673");
  check("40 0E AC 43 FF BE 77 00 00 00", 44100, "");
  check("40 0E AC 43 FF BE 76 00 00 00", 44100, "44099.99899995327");
  check("C0 0E AC 44 00 00 00 00 00 00", 44100, "");  // the sign does not count
  check("40 3E 00 00 00 00 00 00 AC 44", 44100, "");  // not normalised
  check("3F FF 80 00 00 00 00 00 00 00", 1, "");
}

TEST(AiffToWav, MapsLoopsAndMarkers) {
  using Markers = std::vector<AiffMarker>;
  const auto check = [](const char* name, const Markers& markers, const AiffLoop& sustain,
                        const AiffLoop& release, const std::string& expected,
                        const std::string& warnings = "") {
    const Converted converted =
        convert(aiff({comm({.frames = 4000, .bits = 8}), ssnd(ByteBuffer(4000)), mark(markers),
                      inst(AiffInstrument{0, 0, 0, 0, 1, 1, 0, sustain, release})}));
    EXPECT_EQ(found(parseWav(converted.file)),
              "4000@44 smpl 0+0" + expected + " inst 0 0 0 0-0 1-1")
        << name;
    EXPECT_EQ(converted.warnings, warnings) << name;
  };
  const Markers four = {{1, 0, ""}, {2, 10, ""}, {3, 20, ""}, {4, 4000, ""}};
  const char* allCues = " cue 1@0 cue 2@10 cue 3@20 cue 4@4000";
  check("no loops", four, {0, 1, 2}, {}, allCues);
  check("both", four, {2, 1, 2}, {1, 2, 3}, " loop 0/1 0-9 x0 loop 1/0 10-19 x0 cue 1@4000");
  check("end beyond the sound", {{1, 100, ""}, {2, 5000, ""}, {3, 4001, ""}}, {1, 1, 2}, {},
        " loop 0/0 100-3999 x0");
  check("both ends beyond", {{1, 4500, ""}, {2, 5000, ""}}, {1, 1, 2}, {}, "",
        "Sustain loop is invalid (start 4000, end 4000) – skipped.\n");
  check("unknown play modes", four, {3, 1, 2}, {-1, 3, 4}, " loop 0/0 0-9 x0 loop 1/0 20-3999 x0",
        "Sustain loop: unknown play mode 3 – converted to a forward loop.\n"
        "Release loop: unknown play mode -1 – converted to a forward loop.\n");
  check("empty and reversed", four, {9, 2, 2}, {1, 3, 2}, allCues,
        "Sustain loop is invalid (start 10, end 10) – skipped.\n"
        "Release loop is invalid (start 20, end 10) – skipped.\n");
  check("markers missing", four, {1, 1, 7}, {9, 0, 2}, allCues,
        "Sustain loop: the associated markers are missing – skipped.\n"
        "Release loop: the associated markers are missing – skipped.\n");
  check("a marker of a loop and of a skipped one", four, {1, 1, 2}, {1, 2, 9},
        " loop 0/0 0-9 x0 cue 1@20 cue 2@4000",
        "Release loop: the associated markers are missing – skipped.\n");
  check("the later of equal IDs", {{1, 0, ""}, {2, 10, ""}, {1, 5, ""}, {-3, 7, ""}}, {1, 1, 2}, {},
        " loop 0/0 5-9 x0 cue 1@7");
  check("negative IDs, duplicates", {{-1, 3, ""}, {0, 8, ""}, {7, 8, ""}, {7, 8, ""}}, {1, -1, 0},
        {}, " loop 0/0 3-7 x0 cue 1@8 cue 2@8");
}

TEST(AiffToWav, DerivesTheInstrument) {
  const auto check = [](std::int8_t baseNote, std::int8_t detune, std::int16_t gain,
                        const std::string& expected) {
    const Converted converted =
        convert(aiff({comm({}), ssnd({}),
                      inst(AiffInstrument{baseNote, detune, -1, 127, 0, -128, gain, {}, {}})}));
    EXPECT_EQ(found(parseWav(converted.file)), "0@44 smpl " + expected + " 0-127 1-1");
    EXPECT_EQ(
        converted.warnings,
        gain >= -128 && gain <= 127
            ? ""
            : line("A gain of ", gain, " dB does not fit into the WAV inst chunk – clamped.\n"));
  };
  check(60, 0, -6, "60+0 inst 60 0 -6");  // unity note + fraction, inst note, fine tune, gain
  check(60, -10, 127, "60+429496730 inst 60 -10 127");
  check(60, 1, -128, "59+4252017623 inst 60 1 -128");
  check(60, 127, 0, "59+2147483648 inst 60 50 0");
  check(60, -128, 0, "60+2147483648 inst 60 -50 0");
  check(1, 20, 0, "0+3435973837 inst 1 20 0");
  check(0, 20, 0, "0+0 inst 0 20 0");
  check(-128, -20, 0, "0+858993459 inst 0 -20 0");
  check(127, 0, -32768, "127+0 inst 127 0 -128");
}

}  // namespace
}  // namespace corvana
