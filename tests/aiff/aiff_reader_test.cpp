#include "aiff/aiff_reader.hpp"

#include <gtest/gtest.h>

#include "support/audio_builder.hpp"
#include "support/failures.hpp"

namespace corvana {
namespace {

using namespace test;
const std::string unsupported = "Unsupported format: ";

TEST(AiffReader, RejectsWhatItCannotUse) {
  constexpr const char* notAIFF = "Not an AIFF file.";
  constexpr const char* noComm = "The COMM chunk is missing or damaged.";
  constexpr const char* noSound = "The SSND chunk is missing.";
  const ByteBuffer good = comm({});
  const ByteBuffer sound = ssnd({});
  const auto with = [&](const Common& common) {
    return aiff({comm(common), sound}, common.compression.empty() ? "AIFF" : "AIFC");
  };
  expectRejections(
      {
          {"empty", {}, notAIFF},
          {"11 bytes", firstBytes(aiff({}), 11), notAIFF},
          {"RIFF", bytes("'RIFF' 00 00 00 00 'AIFF'"), notAIFF},
          {"AIFX", aiff({good, sound}, "AIFX"), notAIFF},
          {"no chunks", aiff({}), noComm},
          {"no COMM", aiff({sound}), noComm},
          {"no SSND", aiff({good}), noSound},
          {"7-byte SSND", aiff({good, aiffChunk("SSND", ByteBuffer(7))}), noSound},
          {"17-byte COMM", aiff({aiffChunk("COMM", firstBytes(commonBody({}), 17)), good, sound}),
           noComm},
          {"18-byte COMM in AIFF-C", aiff({good, sound}, "AIFC"), noComm},
          {"float", with({.compression = "fl32"}), unsupported + "AIFF-C with compression 'fl32'"},
          {"compression before channels", with({.channels = 0, .compression = "ulaw"}),
           unsupported + "AIFF-C with compression 'ulaw'"},
          {"capitals", with({.compression = "SOWT"}),
           unsupported + "AIFF-C with compression 'SOWT'"},
          {"not ASCII", with({.compression = "in2\xB4"}),
           unsupported + "AIFF-C with compression '"
                         "?\?\?\?'"},
          {"0 channels", with({.channels = 0, .bits = 0}), unsupported + "0 channels"},
          {"-1 channels", with({.channels = 0xFFFF}), unsupported + "-1 channels"},
          {"0 bits", with({.bits = 0}), unsupported + "0-bit"},
          {"33 bits", with({.bits = 33}), unsupported + "33-bit"},
          {"-1 bits", with({.bits = 0xFFFF}), unsupported + "-1-bit"},
          {"rate 0", with({.rate = ByteBuffer(10)}), unsupported + "sample rate 0.0"},
          {"rate just below 1", with({.rate = bytes("3F FE FF FF FF FF FF FF F8 00")}),
           unsupported + "sample rate 0.9999999999999999"},
          {"rate 4 GHz", with({.rate = bytes("40 1E EE 6B 28 00 00 00 00 00")}),
           unsupported + "sample rate 4000000000.0"},
          {"infinite", with({.rate = bytes("7F FF 80 00 00 00 00 00 00 00")}),
           unsupported + "sample rate inf"},
          {"not a number", with({.rate = bytes("7F FF 00 00 00 00 00 00 00 00")}),
           unsupported + "sample rate nan"},
      },
      [](ByteView file) { parseAiff(file); });
}

TEST(AiffReader, ReadsTheRate) {
  const struct {
    const char* notation;
    double rate;
  } cases[] = {
      {"40 0E AC 44 00 00 00 00 00 00", 44100},
      {"C0 0E AC 44 00 00 00 00 00 00", 44100},  // the sign does not count
      {"40 0E AC 44 80 00 00 00 00 00", 44100.5},
      {"40 0D AC 44 00 00 00 00 00 00", 22050},
      {"3F FF 80 00 00 00 00 00 00 00", 1},
      {"40 1E EE 6B 27 FF 80 00 00 00", 3999999999.5},
      {"40 3E 00 00 00 00 00 00 AC 44", 44100},  // not normalised
      {"40 0E AC 44 00 00 00 00 00 01", 44100},  // beyond 53 bits
  };
  for (const auto& c : cases)
    EXPECT_EQ(parseAiff(aiff({comm({.rate = bytes(c.notation)}), ssnd({})})).sampleRate, c.rate)
        << c.notation;
}

TEST(AiffReader, AcceptsTheUncompressedFormsOfAiffC) {
  for (const char* compression : {"NONE", "twos", "in24", "in32", "sowt"}) {
    SCOPED_TRACE(compression);
    const AiffInfo info = parseAiff(aiff(
        {comm({.channels = 32767, .frames = 7, .bits = 32, .compression = compression}), ssnd({})},
        "AIFC"));
    EXPECT_EQ(info.littleEndian, std::string_view(compression) == "sowt");
    EXPECT_EQ(info.channels, 32767);
    EXPECT_EQ(info.frameCount, 7U);
    EXPECT_EQ(info.sampleSize, 32);
  }
  EXPECT_FALSE(parseAiff(aiff({comm({.compression = "sowt"}), ssnd({})})).littleEndian)
      << "in plain AIFF nothing follows the rate";
}

TEST(AiffReader, FindsTheSoundBehindItsOffset) {
  const ByteBuffer hundred(92);
  const std::size_t body = 12 + 26 + 8;
  const struct {
    const char* name;
    ByteBuffer sound;
    std::size_t offset, size;
  } cases[] = {
      {"no offset", ssnd(hundred), body + 8, 92},
      {"offset 4", ssnd(hundred, 4), body + 12, 88},
      {"offset beyond the chunk", join({ssnd(hundred, 200), ByteBuffer(300)}), body + 208, 0},
      {"offset beyond the file", ssnd(hundred, 0xFFFFFFFF), body + 100, 0},
      {"size beyond the file", join({bytes("'SSND' FF FF FF FF"), ByteBuffer(11)}), body + 8, 3},
      {"a later one counts", join({ssnd(hundred), ssnd({1, 2})}), body + 100 + 16, 2},
      {"a later one too short", join({ssnd(hundred), aiffChunk("SSND", ByteBuffer(7))}), body + 8,
       92},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const AiffInfo info = parseAiff(aiff({comm({}), c.sound}));
    EXPECT_EQ(info.soundOffset, c.offset);
    EXPECT_EQ(info.soundSize, c.size);
  }
}

std::string namesOf(const std::vector<AiffMarker>& markers) {
  std::string names;
  for (const AiffMarker& marker : markers)
    names += std::to_string(marker.id) + "@" + std::to_string(marker.position) + marker.name + "|";
  return names;
}

TEST(AiffReader, ReadsMarkersAsFarAsTheyGo) {
  const ByteBuffer three = markerBody({{1, 10, "A"}, {-2, 4294967295, "AB"}, {1, 30, ""}});
  const auto declares = [&](unsigned count) {
    ByteBuffer body = three;
    body[0] = static_cast<std::uint8_t>(count >> 8);
    body[1] = static_cast<std::uint8_t>(count);
    return body;
  };
  EXPECT_EQ(namesOf(parseMarkerChunk(three)), "1@10A|-2@4294967295AB|1@30|");
  EXPECT_EQ(namesOf(parseMarkerChunk(declares(65535))), "1@10A|-2@4294967295AB|1@30|");
  EXPECT_EQ(namesOf(parseMarkerChunk(declares(1))), "1@10A|");
  EXPECT_EQ(namesOf(parseMarkerChunk(declares(0))), "");
  EXPECT_EQ(namesOf(parseMarkerChunk(firstBytes(three, 1))), "");
  EXPECT_EQ(namesOf(parseMarkerChunk(firstBytes(three, 16))), "1@10A|") << "6 of 7 bytes left";
  EXPECT_EQ(namesOf(parseMarkerChunk(firstBytes(three, 17))), "1@10A|-2@4294967295|");
  EXPECT_EQ(namesOf(parseMarkerChunk(firstBytes(three, 18))), "1@10A|-2@4294967295A|")
      << "name cut";
  EXPECT_EQ(namesOf(parseMarkerChunk(markerBody({{1, 0, "\x80 \xA5 \xDB \xF0 z"}}))),
            "1@0Ä • € \xEF\xA3\xBF z|");
}

TEST(AiffReader, TakesTheLaterOfTwoAndCountsAShortInstrumentAsNone) {
  const ByteBuffer good =
      inst(AiffInstrument{-1, -50, -128, 127, 1, 2, -300, {2, 3, 4}, {-5, -6, 32767}});
  const AiffInfo info = parseAiff(aiff({ssnd({}), mark({{1, 1, "x"}}), good, comm({.frames = 1}),
                                        mark({{2, 5, "y"}}), comm({.frames = 2})}));
  EXPECT_EQ(info.frameCount, 2U);
  EXPECT_EQ(namesOf(info.markers), "2@5y|");
  ASSERT_TRUE(info.instrument);
  EXPECT_EQ(info.instrument->lowNote, -128);
  EXPECT_EQ(info.instrument->gain, -300);
  EXPECT_EQ(info.instrument->sustainLoop.endMarker, 4);
  EXPECT_EQ(info.instrument->releaseLoop.playMode, -5);
  EXPECT_EQ(info.instrument->releaseLoop.endMarker, 32767);
  const AiffInfo removed =
      parseAiff(aiff({comm({}), ssnd({}), good, mark({{1, 1, "x"}}),
                      aiffChunk("INST", ByteBuffer(19)), aiffChunk("MARK", {})}));
  EXPECT_FALSE(removed.instrument);
  EXPECT_TRUE(removed.markers.empty());
}

}  // namespace
}  // namespace corvana
