#include "vocabulary/summary.hpp"

#include <gtest/gtest.h>
#include <limits>

namespace corvana {
namespace {

TEST(Summary, NamesWhatIsThere) {
  const struct {
    std::int64_t bits, channels;
    std::uint32_t rate;
    std::optional<std::int64_t> rootKey;
    std::int64_t fineTune, loops, markers, cuePoints;
    const char* line;
  } cases[] = {
      {16, 2, 44100, {}, 0, 0, 0, 0, "16-bit, stereo, 44100 Hz"},
      {16, 2, 44100, 60, 0, 2, 4, 0, "16-bit, stereo, 44100 Hz, root key 60, 2 loops, 4 markers"},
      {8, 6, 22050, 61, -12, 0, 0, 3,
       "8-bit, 6 channels, 22050 Hz, root key 61 (-12 ct), 3 cue points"},
      {24, 1, 48000, 0, 7, 1, 1, 1,
       "24-bit, mono, 48000 Hz, root key 0 (+7 ct), 1 loop, 1 marker, 1 cue point"},
      {24, 0, 4294967295, {}, 12, 0, 0, 0, "24-bit, 0 channels, 4294967295 Hz"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(makeSummary(c.bits, c.channels, c.rate, c.rootKey, c.fineTune, c.loops, c.markers,
                          c.cuePoints),
              c.line);
}

TEST(Summary, ChannelAndBitTextsTakeAnyNumber) {
  EXPECT_EQ(channelsText(-1), "-1 channels");
  EXPECT_EQ(channelsText(40000), "40000 channels");
  EXPECT_EQ(bitDepthText(-32768), "-32768-bit");
}

}  // namespace
}  // namespace corvana
