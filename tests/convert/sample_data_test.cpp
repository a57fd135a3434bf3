// Sample data in both directions: every width, both byte orders, across block boundaries.

#include <gtest/gtest.h>

#include "aiff/aiff_reader.hpp"
#include "support/audio_builder.hpp"
#include "support/conversion.hpp"
#include "wav/wav_reader.hpp"

namespace corvana {
namespace {

using namespace test;

ByteBuffer soundOf(const ByteBuffer& file) {
  const AiffInfo info = parseAiff(file);
  const ByteView view = ByteView(file).subspan(info.soundOffset, info.soundSize);
  return {view.begin(), view.end()};
}

ByteBuffer dataOf(const ByteBuffer& file) {
  const WavInfo info = parseWav(file);
  const ByteView view = ByteView(file).subspan(info.dataOffset, info.dataSize);
  return {view.begin(), view.end()};
}

TEST(SampleData, KeepsEveryValueOfEveryWidth) {
  const struct {
    const char* name;
    Format wavFormat;
    const char* wavSamples;
    Common aiffFormat;
    const char* aiffSamples;
    bool bothWays = true;
  } cases[] = {
      {"8-bit",
       {.blockAlign = 1, .bits = 8},
       "00 80 FF 7F",
       {.frames = 4, .bits = 8},
       "80 00 7F FF"},
      {"16-bit", {}, "34 12 00 80 FF 7F", {.frames = 3}, "12 34 80 00 7F FF"},
      {"24-bit stereo",
       {.channels = 2, .blockAlign = 6, .bits = 24},
       "56 34 12 01 02 03",
       {.channels = 2, .frames = 1, .bits = 24},
       "12 34 56 03 02 01"},
      {"32-bit",
       {.blockAlign = 4, .bits = 32},
       "78 56 34 12",
       {.frames = 1, .bits = 32},
       "12 34 56 78"},
      {"20-bit, left-justified",
       {.tag = 0xFFFE, .blockAlign = 3, .bits = 24, .validBits = 20},
       "5F 34 12",
       {.frames = 1, .bits = 20},
       "12 34 5F"},
      {"5-bit",
       {.tag = 0xFFFE, .blockAlign = 1, .bits = 8, .validBits = 5},
       "F8 08",
       {.frames = 2, .bits = 5},
       "78 88"},
      {"24 in 32",
       {.tag = 0xFFFE, .blockAlign = 4, .bits = 32, .validBits = 24},
       "FF 56 34 12",
       {.frames = 1, .bits = 24},
       "12 34 56",
       false},
      {"8 in 16 stays signed",
       {.tag = 0xFFFE, .validBits = 8},
       "FF 7F 00 80",
       {.frames = 2, .bits = 8},
       "7F 80",
       false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const Converted toAiff = convert(wav({fmt(c.wavFormat), data(bytes(c.wavSamples))}));
    EXPECT_EQ(soundOf(toAiff.file), bytes(c.aiffSamples));
    const AiffInfo info = parseAiff(toAiff.file);
    EXPECT_EQ(info.sampleSize, c.aiffFormat.bits);
    EXPECT_EQ(info.frameCount, c.aiffFormat.frames);
    if (!c.bothWays) continue;
    const ByteBuffer aiffFile = aiff({comm(c.aiffFormat), ssnd(bytes(c.aiffSamples))});
    EXPECT_EQ(dataOf(convert(aiffFile).file), bytes(c.wavSamples));
  }
}

TEST(SampleData, LittleEndianAiffCIsCopied) {
  const auto convertSowt = [](int bits, const char* samples) {
    return dataOf(convert(aiff({comm({.frames = 2, .bits = bits, .compression = "sowt"}),
                                ssnd(bytes(samples))},
                               "AIFC"))
                      .file);
  };
  EXPECT_EQ(convertSowt(16, "34 12 78 56"), bytes("34 12 78 56"));
  EXPECT_EQ(convertSowt(8, "00 7F"), bytes("80 FF"));
}

TEST(SampleData, BlocksLeaveNoSeam) {
  for (const unsigned width : {1U, 2U, 3U, 4U}) {
    for (const unsigned channels : {1U, 3U}) {
      SCOPED_TRACE(std::to_string(channels) + " × " + std::to_string(width) + " bytes");
      const unsigned frameSize = channels * width;
      const std::uint32_t frames = 2 * 1'048'576 / frameSize + 5;
      const ByteBuffer little = noise(std::size_t{frames} * frameSize);
      ByteBuffer big(little.size());
      for (std::size_t i = 0; i < little.size(); ++i)
        big[i] = width == 1 ? little[i] ^ 0x80U : little[i - i % width + width - 1 - i % width];

      const Format format{.channels = static_cast<std::uint16_t>(channels),
                          .blockAlign = static_cast<std::uint16_t>(frameSize),
                          .bits = static_cast<std::uint16_t>(8 * width)};
      const Converted toAiff = convert(wav({fmt(format), data(little)}));
      EXPECT_TRUE(soundOf(toAiff.file) == big);
      EXPECT_EQ(toAiff.progress.size(), 3U);
      EXPECT_EQ(toAiff.progress.back(), 1.0);

      const Common common{.channels = static_cast<int>(channels),
                          .frames = frames,
                          .bits = static_cast<int>(8 * width)};
      const Converted toWav = convert(aiff({comm(common), ssnd(big)}));
      EXPECT_TRUE(dataOf(toWav.file) == little);
      EXPECT_EQ(toWav.progress, toAiff.progress);
    }
  }
}

}  // namespace
}  // namespace corvana
