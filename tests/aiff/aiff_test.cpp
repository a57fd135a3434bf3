#include <gtest/gtest.h>

#include "aiff/aiff_writer.hpp"
#include "aiff/extended80.hpp"
#include "support/audio_builder.hpp"
#include "support/conversion.hpp"

namespace corvana {
namespace {

using namespace test;

TEST(AiffReader, RejectsWhatCannotBeConverted) {
  const auto with = [](const Common& common) {
    return aiff({comm(common), ssnd({})}, common.compression.empty() ? "AIFF" : "AIFC");
  };
  const auto rate = [&](const char* notation) { return with({.rate = notation}); };
  const std::pair<ByteBuffer, std::string> cases[] = {
      {firstBytes(aiff({}), 11), "Not an AIFF file."},
      {bytes("'RIFF' 00 00 00 00 'AIFF'"), "Not an AIFF file."},
      {aiff({comm({}), ssnd({})}, "AIFX"), "Not an AIFF file."},
      {aiff({ssnd({})}), "The COMM chunk is missing or damaged."},
      {aiff({ssnd({}), firstBytes(comm({}), 8 + 17)}), "The COMM chunk is missing or damaged."},
      {aiff({comm({}), ssnd({})}, "AIFC"), "The COMM chunk is missing or damaged."},
      {aiff({comm({})}), "The SSND chunk is missing."},
      {aiff({comm({}), aiffChunk("SSND", ByteBuffer(7))}), "The SSND chunk is missing."},
      {with({.compression = "fl32"}), "Unsupported format: AIFF-C with compression 'fl32'"},
      {with({.channels = 0, .compression = "SOWT"}),
       "Unsupported format: AIFF-C with compression 'SOWT'"},
      {with({.compression = "in2\xB4"}),
       "Unsupported format: AIFF-C with compression '" + std::string(4, '?') + "'"},
      {with({.channels = 0, .bits = 0}), "Unsupported format: 0 channels"},
      {with({.channels = 0xFFFF}), "Unsupported format: -1 channels"},
      {with({.bits = 0}), "Unsupported format: 0-bit"},
      {with({.bits = 33}), "Unsupported format: 33-bit"},
      {with({.bits = 0xFFFF}), "Unsupported format: -1-bit"},
      {with({.channels = 16384, .bits = 25}), "Unsupported format: 16384 channels"},
      {rate("00 00 00 00 00 00 00 00 00 00"), "Unsupported format: sample rate 0.0"},
      {rate("3F FE FF FF FF FF FF FF F8 00"), "Unsupported format: sample rate 0.9999999999999999"},
      {rate("40 1E EE 6B 28 00 00 00 00 00"), "Unsupported format: sample rate 4000000000.0"},
      {rate("7F FF 80 00 00 00 00 00 00 00"), "Unsupported format: sample rate inf"},
      {rate("7F FF 00 00 00 00 00 00 00 00"), "Unsupported format: sample rate nan"},
  };
  for (const auto& [file, message] : cases)
    EXPECT_EQ(errorOf([&file = file] { planAIFFToWAV(file); }), message);
  EXPECT_EQ(planAIFFToWAV(with({.channels = 16383, .bits = 32})).summary.channels, 16383U);
}

TEST(AiffReader, FindsTheSoundBehindItsOffset) {
  const ByteBuffer hundred(92);
  const std::size_t body = 12 + 26 + 8;
  const struct {
    const char* name;
    ByteBuffer sound;
    std::size_t offset, size;
  } cases[] = {
      {"offset 4", ssnd(hundred, 4), body + 12, 88},
      {"offset beyond the chunk", join({ssnd(hundred, 200), ByteBuffer(300)}), body + 208, 0},
      {"offset beyond the file", ssnd(hundred, 0xFFFFFFFF), body + 100, 0},
      {"size beyond the file", join({bytes("'SSND' FF FF FF FF"), ByteBuffer(11)}), body + 8, 3},
      {"a later one counts", join({ssnd(hundred), ssnd({1, 2})}), body + 100 + 16, 2},
      {"unless too short", join({ssnd(hundred), aiffChunk("SSND", {7})}), body + 8, 92},
  };
  for (const auto& c : cases) {
    const AiffInfo info = parseAiff(aiff({comm({}), c.sound}));
    EXPECT_EQ(info.soundOffset, c.offset) << c.name;
    EXPECT_EQ(info.soundSize, c.size) << c.name;
  }
}

TEST(AiffReader, ReadsMarkersAsFarAsTheyGo) {
  const ByteBuffer three = bodyOf(mark({{1, 10, "A"}, {-2, 4294967295, "AB"}, {1, 30, ""}}));
  const auto foundIn = [](const ByteBuffer& body) {
    return found(parseAiff(aiff({comm({}), ssnd({}), aiffChunk("MARK", body)})));
  };
  EXPECT_EQ(foundIn(patched(three, 0, be(65535, 2))), "1 A @10, -2 AB @4294967295, 1  @30, ");
  EXPECT_EQ(foundIn(patched(three, 0, be(1, 2))), "1 A @10, ");
  EXPECT_EQ(foundIn(firstBytes(three, 1)), "");
  EXPECT_EQ(foundIn(firstBytes(three, 16)), "1 A @10, ") << "6 of 7 bytes left";
  EXPECT_EQ(foundIn(firstBytes(three, 18)), "1 A @10, -2 A @4294967295, ") << "name cut";
  EXPECT_EQ(foundIn(bodyOf(mark({{1, 0, "\x80 \xA5 \xDB \xF0 z"}}))),
            "1 Ä • € \xEF\xA3\xBF z @0, ");
}

TEST(AiffReader, TakesTheLaterOfTwoAndCountsAShortInstrumentAsNone) {
  const ByteBuffer good =
      inst(AiffInstrument{-1, -50, -128, 127, 1, 2, -300, {2, 3, 4}, {-5, -6, 32767}});
  const AiffInfo info = parseAiff(aiff({ssnd({}), mark({{1, 1, "x"}}), good, comm({.frames = 1}),
                                        mark({{2, 5, "y"}}), comm({.frames = 2})}));
  EXPECT_EQ(info.frameCount, 2U);
  EXPECT_EQ(found(info), "2 y @5, (2 3 4)(-5 -6 32767) -1 -50 -128-127 1-2 -300");
  EXPECT_FALSE(
      parseAiff(aiff({comm({}), ssnd({}), good, aiffChunk("INST", ByteBuffer(19))})).instrument);
}

TEST(AiffWriter, ExtendedNumbersAreExact) {
  const std::pair<std::uint32_t, const char*> cases[] = {
      {1, "3F FF 80 00 00 00 00 00 00 00"},
      {22050, "40 0D AC 44 00 00 00 00 00 00"},
      {4294967295, "40 1E FF FF FF FF 00 00 00 00"},
  };
  for (const auto& [number, notation] : cases) {
    ByteBuffer buffer;
    appendExtended80(buffer, number);
    EXPECT_EQ(buffer, bytes(notation));
    EXPECT_EQ(decodeExtended80(buffer), number);
  }
}

TEST(AiffWriter, RefusesWhatTheFormSizeCannotHold) {
  AiffContent content{.channels = 1, .sampleSize = 8, .sampleRate = 44100};
  content.frameCount = 0xFFFFFFFE - 4 - 26 - 8 - 8;
  EXPECT_EQ(firstBytes(writeAiff(content).header, 8), bytes("'FORM' FF FF FF FE"));
  ++content.frameCount;
  EXPECT_THROW(writeAiff(content), ConversionError);
}

}  // namespace
}  // namespace corvana
