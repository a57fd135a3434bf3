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

constexpr ConversionOptions anyEncoding{.anyEncoding = true};

TEST(SampleData, AnyEncodingIsCarriedOverBitForBit) {
  const struct {
    const char* type;
    const char* summary;
    Format wavFormat;
    int aiffBits;
    const char *common, *format, *wavSamples, *aiffSamples;
  } cases[] = {
      {"fl32",
       "32-bit floating point, mono",
       {3, 1, 44100, 4, 32},
       32,
       "'COMM' 0000002C 0001 00000002 0020 400EAC44000000000000 'fl32' 15 '32-bit floating point'",
       "'fmt ' 12000000 0300 0100 44AC0000 10B10200 0400 2000 0000 'fact' 04000000 02000000",
       "0100C0FF 01000080",
       "FFC00001 80000001"},
      {"fl64",
       "64-bit floating point, mono",
       {3, 1, 44100, 8, 64},
       64,
       "'COMM' 0000002C 0001 00000002 0040 400EAC44000000000000 'fl64' 15 '64-bit floating point'",
       "'fmt ' 12000000 0300 0100 44AC0000 20620500 0800 4000 0000 'fact' 04000000 02000000",
       "080706050403F17F 0000000000000080",
       "7FF1030405060708 8000000000000000"},
      {"ulaw",
       "µ-law, stereo",
       {7, 2, 44100, 2, 8},
       8,
       "'COMM' 00000020 0002 00000002 0010 400EAC44000000000000 'ulaw' 08 B5 'Law 2:1' 00",
       "'fmt ' 12000000 0700 0200 44AC0000 88580100 0200 0800 0000 'fact' 04000000 02000000",
       "00807FFF",
       "00807FFF"},
      {"alaw",
       "A-law, 3 channels",
       {0xFFFE, 3, 44100, 3, 8, 8, 6},
       16,
       "'COMM' 00000020 0003 00000001 0010 400EAC44000000000000 'alaw' 08 'ALaw 2:1' 00",
       "'fmt ' 28000000 FEFF 0300 44AC0000 CC040200 0300 0800 1600 0800 00000000 "
       "0600 00000000 1000 800000AA00389B71 'fact' 04000000 01000000",
       "55D501",
       "55D501"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.type);
    const ByteBuffer little = bytes(c.wavSamples);
    const ByteBuffer big = bytes(c.aiffSamples);
    const Converted toAiff = convert(wav({fmt(c.wavFormat), data(little)}), anyEncoding);
    EXPECT_EQ(toAiff.file, aiff({bytes("'FVER' 00000004 A2805140"), bytes(c.common),
                                 patched(ssnd(big), 12, be(0, 4))},
                                "AIFC"));
    EXPECT_EQ(toAiff.summary, std::string(c.summary) + ", 44100 Hz");
    const ByteBuffer wavFile = wav({bytes(c.format), data(little)});
    const auto frames = static_cast<std::uint32_t>(little.size() / c.wavFormat.blockAlign);
    std::string capitals = c.type;
    for (char& letter : capitals)
      letter = static_cast<char>(std::toupper(letter));
    for (const std::string& type : {std::string(c.type), capitals}) {
      const Common common{c.wavFormat.channels, frames, c.aiffBits, Common().rate, type};
      EXPECT_EQ(convert(aiff({comm(common), ssnd(big)}, "AIFC"), anyEncoding).file, wavFile);
    }
    EXPECT_EQ(convert(toAiff.file, anyEncoding).file, wavFile);
  }
}

TEST(SampleData, LessCommonOrdersOfBytesAreRead) {
  const auto toWav = [](int bits, std::string_view type, const char* samples) {
    const Common common{.frames = 1, .bits = bits, .compression = type};
    const auto file = convert(aiff({comm(common), ssnd(bytes(samples))}, "AIFC"), anyEncoding).file;
    return ByteBuffer(file.end() - 4, file.end());
  };
  EXPECT_EQ(toWav(8, "raw ", "81"), bytes("00 00 81 00"));
  EXPECT_EQ(toWav(24, "42ni", "563412"), bytes("56 34 12 00"));
  EXPECT_EQ(toWav(16, "42ni", "563412"), bytes("56 34 12 00")) << "three bytes, whatever is said";
  EXPECT_EQ(toWav(32, "23ni", "78563412"), bytes("78 56 34 12"));
  const ByteBuffer rifx = bytes(
      "'RIFX' 00000000 'WAVE' 'fmt ' 00000028 FFFE 0001 0000AC44 00000000 0004 0020 0016 0018 "
      "00000004 00000001 0000 0010 800000AA00389B71 'data' 00000008 12345678 9ABCDEF0 "
      "'smpl' 0000003C 0000000000000000000000000000003C 80000000 0000000000000000 00000001 "
      "00000000 "
      "00000000 00000000 00000000 00000001 00000000 00000000 'cue ' 0000001C 00000001 "
      "00000007 00000000 'data' 00000000 00000000 00000001");
  const ByteBuffer toAiff = convert(rifx, anyEncoding).file;
  EXPECT_EQ(ByteBuffer(toAiff.end() - 6, toAiff.end()), bytes("123456 9ABCDE"));
  EXPECT_EQ(found(parseAiff(toAiff)),
            "1 Loop 1 Start @0, 2 Loop 1 End @2, 3 Cue 7 @1, (1 1 2)(0 0 0) 60 -50 0-127 1-127 0");
}

TEST(SampleData, OfAnyEncodingThatIsCompressedOrOddIsRefused) {
  const auto fromWav = [](const Format& format) {
    return errorOf([&] { convert(wav({fmt(format), data({})}), anyEncoding); });
  };
  const auto fromAiff = [](int bits, std::string_view type) {
    const ByteBuffer common = comm({.bits = bits, .compression = type});
    return errorOf([&] { convert(aiff({common, ssnd({})}, "AIFC"), anyEncoding); });
  };
  const Format floats[] = {
      {.tag = 3},
      {.tag = 3, .blockAlign = 4, .bits = 24},
      {.tag = 3, .blockAlign = 8, .bits = 32},
      {.tag = 0xFFFE, .blockAlign = 4, .validBits = 32, .subFormat = 3},
      {.tag = 0xFFFE, .blockAlign = 4, .bits = 32, .validBits = 24, .subFormat = 3}};
  for (const Format& format : floats)
    EXPECT_EQ(fromWav(format), "Unsupported format: floating-point WAV");
  EXPECT_EQ(fromWav({.tag = 6, .blockAlign = 1, .bits = 16}), "Unsupported format: format tag 6");
  EXPECT_EQ(fromWav({.tag = 7}), "Unsupported format: format tag 7");
  EXPECT_EQ(fromWav({.tag = 2}), "Unsupported format: format tag 2");
  EXPECT_EQ(fromWav({.tag = 3, .blockAlign = 4, .bits = 0}), "The fmt chunk is damaged.");
  EXPECT_EQ(fromAiff(16, "raw "), "Unsupported format: 16-bit");
  EXPECT_EQ(fromAiff(16, "ima4"), "Unsupported format: AIFF-C with compression 'ima4'");
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
    for (const bool reverseBytes : {true, false}) {
      for (std::uint32_t sourceWidth = 1; sourceWidth <= 4; ++sourceWidth)
        for (std::uint32_t outputWidth = 1; outputWidth <= sourceWidth; ++outputWidth)
          checkKernel({sourceWidth, outputWidth, reverseBytes, reverseBytes}, processor);
      checkKernel({8, 8, reverseBytes}, processor);
    }
}

}  // namespace
}  // namespace corvana
