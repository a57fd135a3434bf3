#include <gtest/gtest.h>

#include "support/audio_builder.hpp"
#include "support/conversion.hpp"
#include "wav/wav_writer.hpp"

namespace corvana {
namespace {

using namespace test;

const ByteBuffer format = fmt({});

TEST(WavReader, RejectsWhatCannotBeConverted) {
  const auto with = [](const Format& f) { return wav({fmt(f), data({})}); };
  const auto extensible = [&](std::uint16_t subFormat) {
    return with({.tag = 0xFFFE, .validBits = 16, .subFormat = subFormat});
  };
  const std::pair<ByteBuffer, const char*> cases[] = {
      {firstBytes(wav({}), 11), "Not a RIFF file."},
      {bytes("'RIFX' 00 00 00 00 'WAVE'"), "Not a RIFF file."},
      {bytes("'RIFF' 00 00 00 00 'WAVX'"), "The RIFF file is not a WAVE file."},
      {wav({data({1, 2})}), "The fmt chunk is missing."},
      {wav({format}), "The data chunk is missing."},
      {wav({data({}), firstBytes(format, 8 + 15)}), "The fmt chunk is damaged."},
      {wav({fmt({.channels = 0}), format}), "The fmt chunk is damaged."},
      {with({.rate = 0}), "The fmt chunk is damaged."},
      {with({.bits = 0}), "The fmt chunk is damaged."},
      {with({.channels = 2, .blockAlign = 3}), "The fmt chunk is damaged."},
      {with({.tag = 3, .channels = 0}), "Unsupported format: floating-point WAV"},
      {extensible(3), "Unsupported format: floating-point WAV"},
      {with({.tag = 0xFFFE}), "Unsupported format: format tag 65534"},
      {with({.tag = 2}), "Unsupported format: format tag 2"},
      {extensible(17), "Unsupported format: format tag 17"},
      {with({.blockAlign = 8, .bits = 64}), "Unsupported format: 64-bit"},
      {with({.blockAlign = 0, .bits = 33}), "Unsupported format: 33-bit"},
      {wav({fmt({.channels = 32768, .blockAlign = 32768, .bits = 8}), data({1})}),
       "Unsupported format: 32768 channels"},
  };
  for (const auto& [file, message] : cases)
    EXPECT_EQ(errorOf([&file = file] { planWAVToAIFF(file); }), message);
}

TEST(WavReader, FindsBytesAndEffectiveBits) {
  const struct {
    const char* name;
    Format format;
    std::uint32_t bytesPerSample, bitsPerSample;
  } cases[] = {
      {"block align 0", {.channels = 3, .blockAlign = 0, .bits = 24}, 3, 24},
      {"block align 0, odd bits", {.blockAlign = 0, .bits = 9}, 2, 9},
      {"24 bits said, 16 there", {.blockAlign = 2, .bits = 24}, 2, 16},
      {"12 bits in 2 bytes", {.bits = 12}, 2, 12},
      {"24 in 32", {.tag = 0xFFFE, .blockAlign = 4, .bits = 32, .validBits = 24}, 4, 24},
      {"valid bits 0", {.tag = 0xFFFE, .blockAlign = 4, .bits = 32, .validBits = 0}, 4, 32},
      {"more valid bits than there are", {.tag = 0xFFFE, .validBits = 40}, 2, 16},
      {"an extension of plain PCM means nothing", {.tag = 1, .validBits = 4}, 2, 16},
      {"65535 channels, block align 0", {.channels = 65535, .blockAlign = 0, .bits = 32}, 4, 32},
  };
  for (const auto& c : cases) {
    const WavInfo info = parseWav(wav({fmt(c.format), data({})}));
    EXPECT_EQ(info.channels, c.format.channels) << c.name;
    EXPECT_EQ(info.bytesPerSample, c.bytesPerSample) << c.name;
    EXPECT_EQ(info.bitsPerSample, c.bitsPerSample) << c.name;
  }
}

TEST(WavReader, FindsChunksInAnyOrderAndOfTwoTheLater) {
  const SampleLoop a{1, 2, 3, 4, 5};
  const ByteBuffer full = inst(InstrumentChunk{60, -50, -128, 1, 2, 3, 255});
  const ByteBuffer unknown = bytes("FF FE 00 80 03 00 00 00 01 02 03 00");
  const ByteBuffer tooShort = join({wavChunk("smpl", ByteBuffer(35)), wavChunk("cue ", {1, 0, 0}),
                                    wavChunk("inst", ByteBuffer(6))});
  const ByteBuffer longLoops = patched(smpl(60, 7, {a, {}}), 8 + 28, le32({5}));
  const ByteBuffer endlessCues = patched(cue({{1, 10}, {1, 10}}), 8, le32({0xFFFFFFFF}));
  const struct {
    const char* name;
    ByteBuffer chunks;
    const char* expected;
  } cases[] = {
      {"any order", join({smpl(60, 7), data({1, 2, 3, 4, 5}), unknown, full, format}),
       "5@64 smpl 60+7 inst 60 -50 -128 1-2 3-255"},
      {"the later", join({data({9}), cue({{1, 1}}), data({}), cue({{5, 50}, {6, 60}}), format}),
       "0@66 cue 5@50 cue 6@60"},
      {"a short chunk is none",
       join({format, data({}), smpl(60, 9, {a}), full, cue({{1, 1}}), tooShort}), "0@44"},
      {"more loops declared", join({format, data({}), longLoops}),
       "0@44 smpl 60+7 loop 1/2 3-4 x5 loop 0/0 0-0 x0"},
      {"fewer declared", join({format, data({}), patched(longLoops, 8 + 28, le32({1}))}),
       "0@44 smpl 60+7 loop 1/2 3-4 x5"},
      {"a loop cut", join({format, data({}), firstBytes(longLoops, 8 + 83)}),
       "0@44 smpl 60+7 loop 1/2 3-4 x5"},
      {"more points declared", join({format, data({}), endlessCues}), "0@44 cue 1@10 cue 1@10"},
      {"a point cut", join({format, data({}), firstBytes(endlessCues, 8 + 51)}), "0@44 cue 1@10"},
      {"data cut", join({format, bytes("'data' FF FF FF FF 01 02 03")}), "3@44"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(found(parseWav(wav({c.chunks}))), c.expected) << c.name;
}

TEST(WavWriter, FormatChunk) {
  const std::string guid = "01 00 00 00 00 00 10 00 80 00 00 AA 00 38 9B 71";
  EXPECT_EQ(
      buildFormatChunk({6, 16, 44100, 0}),
      bytes("FE FF 06 00 44 AC 00 00 30 13 08 00 0C 00 10 00 16 00 10 00 00 00 00 00" + guid));
  EXPECT_EQ(buildFormatChunk({1, 16, 4'000'000'000, 0}),  // bytes per second above 32 bits
            bytes("01 00 01 00 00 28 6B EE 00 50 D6 DC 02 00 10 00"));
}

TEST(WavWriter, RefusesWhatTheRiffSizeCannotHold) {
  WavContent content{.channels = 1, .sampleSize = 8, .sampleRate = 44100};
  content.frameCount = 0xFFFFFFFE - 4 - 24 - 8;
  EXPECT_EQ(firstBytes(writeWav(content).header, 8), bytes("'RIFF' FE FF FF FF"));
  ++content.frameCount;  // and a pad byte
  EXPECT_THROW(writeWav(content), ConversionError);
  content.frameCount -= 2;
  content.metadata.instrument.emplace();
  EXPECT_THROW(writeWav(content), ConversionError);
}

}  // namespace
}  // namespace corvana
