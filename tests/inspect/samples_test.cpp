#include "inspect/samples.hpp"

#include <algorithm>
#include <gtest/gtest.h>

namespace corvana {
namespace {

constexpr auto big = ByteOrder::big;

TEST(Waveform, ReadsEveryWayOfStoringSamples) {
  constexpr auto integer = SampleKind::integer;
  constexpr auto floating = SampleKind::floatingPoint;
  const struct {
    SoundFormat format;
    ByteBuffer bytes;  ///< two samples
    double lowest, highest;
  } rows[] = {
      {{.kind = integer, .sampleBytes = 1, .isUnsigned = true}, {0x80, 0xC0}, 0, 0.5},
      {{.kind = integer, .sampleBytes = 1, .order = big}, {0x80, 0x40}, -1, 0.5},
      {{.kind = integer, .sampleBytes = 2}, {0x00, 0xC0, 0x00, 0x20}, -0.5, 0.25},
      {{.kind = integer, .sampleBytes = 2, .order = big}, {0xC0, 0, 0x20, 0}, -0.5, 0.25},
      {{.kind = integer, .sampleBytes = 3}, {0, 0, 0xC0, 0, 0, 0x20}, -0.5, 0.25},
      {{.kind = integer, .sampleBytes = 3, .order = big}, {0xC0, 0, 0, 0x20, 0, 0}, -0.5, 0.25},
      {{.kind = integer, .sampleBytes = 4}, {0, 0, 0, 0xC0, 0, 0, 0, 0x20}, -0.5, 0.25},
      {{.kind = floating, .sampleBytes = 4}, {0, 0, 0, 0x3F, 0, 0, 0, 0xBF}, -0.5, 0.5},
      {{.kind = floating, .sampleBytes = 4, .order = big}, {0x3F, 0, 0, 0, 0, 0, 0, 0}, 0, 0.5},
      {{.kind = floating, .sampleBytes = 4, .order = big}, {0x7F, 0xC0, 0, 0, 0, 0, 0, 0}, 0, 0},
  };
  for (const auto& [format, bytes, lowest, highest] : rows) {
    SCOPED_TRACE(testing::Message()
                 << format.sampleBytes << " bytes, kind " << static_cast<int>(format.kind));
    // As two frames, and as one of two channels: all channels are one picture.
    SoundFormat mono = format;
    mono.channels = 1;
    const std::vector<Extent> apart = waveform(bytes, mono, 2);
    ASSERT_EQ(apart.size(), 2U);
    EXPECT_EQ(std::min(apart[0].lowest, apart[1].lowest), lowest);
    EXPECT_EQ(std::max(apart[0].highest, apart[1].highest), highest);
    SoundFormat stereo = format;
    stereo.channels = 2;
    const std::vector<Extent> together = waveform(bytes, stereo, 1);
    ASSERT_EQ(together.size(), 1U);
    EXPECT_EQ(together[0].lowest, lowest);
    EXPECT_EQ(together[0].highest, highest);
  }
}

TEST(Waveform, CoversEveryFrameWhateverTheColumns) {
  const SoundFormat format = {.kind = SampleKind::integer, .channels = 1, .sampleBytes = 1};
  ByteBuffer frames(10, 0);
  for (std::size_t peak = 0; peak < frames.size(); ++peak) {
    frames.assign(frames.size(), 0);
    frames[peak] = 0x40;
    for (const std::size_t columns : {1U, 3U, 7U, 10U, 25U}) {
      const std::vector<Extent> extents = waveform(frames, format, columns);
      ASSERT_EQ(extents.size(), columns);
      const auto hasPeak = [](const Extent& extent) { return extent.highest == 0.5; };
      EXPECT_TRUE(std::any_of(extents.begin(), extents.end(), hasPeak)) << peak << ' ' << columns;
    }
  }
  EXPECT_TRUE(waveform({}, format, 4).empty());
  EXPECT_TRUE(
      waveform(frames, {.kind = SampleKind::aLaw, .channels = 1, .sampleBytes = 1}, 4).empty());
}

}  // namespace
}  // namespace corvana
