// Sample data in both directions: every width, both byte orders, across block boundaries.

#include <gtest/gtest.h>

#include "convert/sample_kernels.hpp"
#include "support/audio_builder.hpp"
#include "support/conversion.hpp"

namespace corvana {
namespace {

using namespace test;

/// The samples of an output without metadata, all of it behind the samples' chunk header.
ByteBuffer samplesOf(const ByteBuffer& file, std::size_t size) {
  const std::size_t padding = size % 2;
  return {file.end() - static_cast<std::ptrdiff_t>(size + padding),
          file.end() - static_cast<std::ptrdiff_t>(padding)};
}

TEST(SampleData, KeepsEveryValueOfEveryWidth) {
  const struct {
    const char* name;
    Format wavFormat;
    Common aiffFormat;
    const char *wavSamples, *aiffSamples;
    bool bothWays = true;
  } cases[] = {
      {"8", {1, 1, 44100, 1, 8}, {1, 2, 8}, "00 FF", "80 7F"},
      {"16", {}, {1, 3, 16}, "34 12 00 80 FF 7F", "12 34 80 00 7F FF"},
      {"20 of 24", {0xFFFE, 2, 44100, 6, 24, 20}, {2, 1, 20}, "5F 34 12 01 02 03", "12345F 030201"},
      {"5 of 8", {0xFFFE, 1, 44100, 1, 8, 5}, {1, 2, 5}, "F8 08", "78 88"},
      {"24 of 32", {0xFFFE, 1, 44100, 4, 32, 24}, {1, 1, 24}, "FF 56 34 12", "12 34 56", false},
      {"8 of 16 stay signed", {0xFFFE, 1, 44100, 2, 16, 8}, {1, 2, 8}, "FF7F 0080", "7F 80", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const ByteBuffer little = bytes(c.wavSamples);
    const ByteBuffer big = bytes(c.aiffSamples);
    const ByteBuffer toAiff = convert(wav({fmt(c.wavFormat), data(little)})).file;
    EXPECT_EQ(firstBytes(toAiff, 12 + 26), firstBytes(aiff({comm(c.aiffFormat), ssnd(big)}), 38));
    EXPECT_EQ(samplesOf(toAiff, big.size()), big);
    if (!c.bothWays) continue;
    const ByteBuffer toWav = convert(aiff({comm(c.aiffFormat), ssnd(big)})).file;
    EXPECT_EQ(samplesOf(toWav, little.size()), little);
  }
}

TEST(SampleData, TheCompressionTypeTellsTheByteOrder) {
  const auto converted = [](int bits, std::string_view type, std::string_view form = "AIFC") {
    const Common common{.frames = 1, .bits = bits, .compression = type};
    return samplesOf(convert(aiff({comm(common), ssnd({1, 2})}, form)).file, 2);
  };
  for (const char* type : {"NONE", "twos", "in24", "in32"})
    EXPECT_EQ(converted(16, type), (ByteBuffer{2, 1})) << type;
  EXPECT_EQ(converted(16, "sowt"), (ByteBuffer{1, 2}));
  EXPECT_EQ(converted(16, "sowt", "AIFF"), (ByteBuffer{2, 1})) << "nothing follows the rate";
  EXPECT_EQ(converted(8, "sowt"), (ByteBuffer{0x81, 0})) << "a byte and its padding";
}

/// The rule in its plainest form.
ByteBuffer expectedSamples(const SampleConversion& conversion, ByteView source) {
  const auto [sourceWidth, outputWidth, reverseBytes, turnSign] = conversion;
  ByteBuffer output;
  for (std::size_t sample = 0; sample < source.size(); sample += sourceWidth)
    for (std::size_t k = 0; k < outputWidth; ++k) {
      const std::uint8_t byte = source[sample + (reverseBytes ? sourceWidth - 1 - k : k)];
      output.push_back(sourceWidth == 1 && turnSign ? byte ^ 0x80 : byte);
    }
  return output;
}

/// `count` bytes without a pattern that a wrong offset could repeat.
ByteBuffer noise(std::size_t count) {
  ByteBuffer samples(count);
  std::uint32_t state = 1;
  for (std::uint8_t& sample : samples)
    sample = static_cast<std::uint8_t>((state = state * 1664525 + 1013904223) >> 24);
  return samples;
}

TEST(SampleData, BlocksLeaveNoSeam) {
  for (const std::uint16_t width : {std::uint16_t{1}, std::uint16_t{3}}) {
    SCOPED_TRACE(width);
    const auto frameSize = static_cast<std::uint16_t>(3 * width);
    const auto bits = static_cast<std::uint16_t>(8 * width);
    const std::uint32_t frames = 2 * 1'048'576 / frameSize + 5;
    const ByteBuffer little = noise(std::size_t{frames} * frameSize);
    const ByteBuffer big = expectedSamples({width, width, true}, little);
    const Format format{.channels = 3, .blockAlign = frameSize, .bits = bits};
    const Converted toAiff = convert(wav({fmt(format), data(little)}));
    EXPECT_TRUE(samplesOf(toAiff.file, big.size()) == big);
    const std::uint32_t blockFrames = 1'048'576 / frameSize;
    const double firstBlock = blockFrames;
    EXPECT_EQ(toAiff.progress, (std::vector{firstBlock / frames, 2 * firstBlock / frames, 1.0}));
    const Common common{.channels = 3, .frames = frames, .bits = bits};
    const Converted toWav = convert(aiff({comm(common), ssnd(big)}));
    EXPECT_TRUE(samplesOf(toWav.file, little.size()) == little);
    EXPECT_EQ(toWav.progress, toAiff.progress);
  }
}

void checkKernel(const SampleConversion& conversion, Processor processor) {
  SCOPED_TRACE(
      line(conversion.sourceWidth, " to ", conversion.outputWidth, conversion.reverseBytes));
  constexpr std::uint8_t guard = 0xA5;
  for (std::size_t samples = 0; samples <= 100; ++samples) {
    const std::size_t offset = samples % 17;  // of both addresses from a round one
    // The source ends with its buffer, so that a sanitizer sees a read beyond it.
    const ByteBuffer buffer = noise(offset + samples * conversion.sourceWidth);
    const ByteView source = ByteView(buffer).subspan(offset);
    const ByteBuffer expected = join(
        {ByteBuffer(offset, guard), expectedSamples(conversion, source), ByteBuffer(64, guard)});
    ByteBuffer output(expected.size(), guard);
    sampleKernel(conversion, processor)(source.data(), output.data() + offset, samples);
    ASSERT_EQ(output, expected) << samples << " samples";
  }
}

TEST(SampleKernels, FollowTheRuleForEveryWidthLengthAndAlignment) {
  for (const Processor processor : {Processor::anyKind, thisProcessor()})
    for (std::uint32_t sourceWidth = 1; sourceWidth <= 4; ++sourceWidth) {
      for (std::uint32_t outputWidth = 1; outputWidth <= sourceWidth; ++outputWidth)
        checkKernel({sourceWidth, outputWidth, true}, processor);
      checkKernel({sourceWidth, sourceWidth, false}, processor);
    }
}

}  // namespace
}  // namespace corvana
