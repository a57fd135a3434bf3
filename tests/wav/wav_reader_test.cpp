#include "wav/wav_reader.hpp"

#include <gtest/gtest.h>

#include "support/audio_builder.hpp"
#include "support/failures.hpp"

namespace corvana {
namespace {

using namespace test;
const std::string unsupported = "Unsupported format: ";

const ByteBuffer goodFormat = fmt({});

TEST(WavReader, RejectsWhatItCannotUse) {
  const std::string damaged = "The fmt chunk is damaged.";
  const std::string noFormat = "The fmt chunk is missing.";
  const std::string noData = "The data chunk is missing.";
  const auto withFormat = [](const Format& format) { return wav({fmt(format), data({})}); };
  expectRejections(
      {
          {"empty", {}, "Not a RIFF file."},
          {"11 bytes", firstBytes(wav({}), 11), "Not a RIFF file."},
          {"RIFX", bytes("'RIFX' 00 00 00 00 'WAVE'"), "Not a RIFF file."},
          {"another form", bytes("'RIFF' 00 00 00 00 'WAVX'"), "The RIFF file is not a WAVE file."},
          {"no chunks", wav({}), noFormat},
          {"no fmt", wav({data({1, 2})}), noFormat},
          {"no data", wav({goodFormat}), noData},
          {"no pad byte, so data is not found",
           wav({goodFormat, bytes("'junk' 01 00 00 00 00"), data({})}), noData},
          {"15-byte fmt", wav({wavChunk("fmt ", firstBytes(formatBody({}), 15)), data({})}),
           damaged},
          {"fmt cut by the end", wav({data({}), firstBytes(goodFormat, 20)}), damaged},
          {"damaged fmt ahead of a good one", wav({fmt({.channels = 0}), goodFormat, data({})}),
           damaged},
          {"no channels", withFormat({.channels = 0}), damaged},
          {"no rate", withFormat({.rate = 0}), damaged},
          {"no bits", withFormat({.bits = 0}), damaged},
          {"3 bytes for 2 channels", withFormat({.channels = 2, .blockAlign = 3, .bits = 8}),
           damaged},
          {"float", withFormat({.tag = 3, .channels = 0}), unsupported + "floating-point WAV"},
          {"extensible float",
           withFormat(
               {.tag = 0xFFFE, .blockAlign = 4, .bits = 32, .validBits = 32, .subFormat = 3}),
           unsupported + "floating-point WAV"},
          {"short extensible", withFormat({.tag = 0xFFFE}), unsupported + "format tag 65534"},
          {"ADPCM", withFormat({.tag = 2}), unsupported + "format tag 2"},
          {"extensible ADPCM", withFormat({.tag = 0xFFFE, .validBits = 16, .subFormat = 0x11}),
           unsupported + "format tag 17"},
          {"64 bits", withFormat({.channels = 2, .blockAlign = 16, .bits = 64}),
           unsupported + "64-bit"},
          {"5 bytes from the bits", withFormat({.blockAlign = 0, .bits = 33}),
           unsupported + "33-bit"},
      },
      [](ByteView file) { parseWav(file); });
}

TEST(WavReader, FindsBytesAndEffectiveBits) {
  const struct {
    const char* name;
    Format format;
    std::uint32_t bytesPerSample, bitsPerSample;
  } cases[] = {
      {"plain", {}, 2, 16},
      {"block align 0", {.channels = 3, .blockAlign = 0, .bits = 24}, 3, 24},
      {"block align 0, odd bits", {.blockAlign = 0, .bits = 9}, 2, 9},
      {"24 bits said, 16 there", {.blockAlign = 2, .bits = 24}, 2, 16},
      {"12 bits in 2 bytes", {.bits = 12}, 2, 12},
      {"24 in 32", {.tag = 0xFFFE, .blockAlign = 4, .bits = 32, .validBits = 24}, 4, 24},
      {"valid bits 0", {.tag = 0xFFFE, .blockAlign = 4, .bits = 32, .validBits = 0}, 4, 32},
      {"more valid bits than there are", {.tag = 0xFFFE, .validBits = 40}, 2, 16},
      {"an extension of plain PCM means nothing", {.tag = 1, .validBits = 4}, 2, 16},
      {"65535 channels", {.channels = 65535, .blockAlign = 65535, .bits = 8}, 1, 8},
      {"65535 channels, block align 0", {.channels = 65535, .blockAlign = 0, .bits = 32}, 4, 32},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const WavInfo info = parseWav(wav({fmt(c.format), data({})}));
    EXPECT_EQ(info.channels, c.format.channels);
    EXPECT_EQ(info.sampleRate, 44100U);
    EXPECT_EQ(info.bytesPerSample, c.bytesPerSample);
    EXPECT_EQ(info.bitsPerSample, c.bitsPerSample);
  }
}

TEST(WavReader, TakesChunksInAnyOrderAndTheLaterOfTwo) {
  const WavInfo info = parseWav(wav({
      data({9, 9, 9}),
      bytes("FF FE 00 80 03 00 00 00 01 02 03 00"),
      cue({{1, 1}}),
      goodFormat,
      fmt({.rate = 8000}),
      cue({{5, 50}, {6, 60}}),
      data({1, 2, 3, 4, 5}),
      smpl(60, 7),
  }));
  EXPECT_EQ(info.sampleRate, 8000U);
  EXPECT_EQ(info.dataSize, 5U);
  EXPECT_EQ(info.dataOffset, 12U + 12 + 12 + 36 + 24 + 24 + 60 + 8);
  ASSERT_EQ(info.cuePoints.size(), 2U);
  EXPECT_EQ(info.cuePoints[1].id, 6U);
  EXPECT_EQ(info.cuePoints[1].position, 60U) << "the sample offset, not the play order";
  EXPECT_EQ(info.midiUnityNote, 60U);
  EXPECT_EQ(info.midiPitchFraction, 7U);
}

TEST(WavReader, UsesOfACutChunkWhatIsThere) {
  for (const std::uint32_t declared : {5U, 0x7FFFFFFFU, 0xFFFFFFFEU, 0xFFFFFFFFU}) {
    const WavInfo info =
        parseWav(wav({goodFormat, text("data"), le(declared, 4), bytes("01 02 03")}));
    EXPECT_EQ(info.dataOffset, 44U);
    EXPECT_EQ(info.dataSize, 3U);
  }
  const ByteBuffer cut =
      firstBytes(wav({goodFormat, data({}), smpl(60, 0, {{}, {}, {}})}), 44 + 8 + 84);
  EXPECT_EQ(parseWav(cut).loops->size(), 2U);
}

TEST(WavReader, CutsLoopAndPointCountsToWhatTheBodyHolds) {
  const SampleLoop loop{1, 2, 3, 4, 5};
  const ByteBuffer twoLoops = samplerBody(60, 0, {{}, loop}, 5);
  EXPECT_FALSE(parseSamplerChunk(firstBytes(twoLoops, 35)).loops);
  EXPECT_EQ(parseSamplerChunk(firstBytes(twoLoops, 36)).loops->size(), 0U);
  EXPECT_EQ(parseSamplerChunk(firstBytes(twoLoops, 83)).loops->size(), 1U);
  EXPECT_EQ(parseSamplerChunk(samplerBody(60, 0, {{}, loop}, 1)).loops->size(), 1U);
  const SamplerChunk sampler = parseSamplerChunk(twoLoops);
  ASSERT_EQ(sampler.loops->size(), 2U);
  const SampleLoop& second = (*sampler.loops)[1];
  EXPECT_EQ(std::vector({second.cueID, second.type, second.start, second.end, second.playCount}),
            (std::vector<std::uint32_t>{1, 2, 3, 4, 5}));

  const ByteBuffer twoPoints = cueBody({{1, 10}, {1, 10}}, 0xFFFFFFFF);
  EXPECT_EQ(parseCueChunk(twoPoints).size(), 2U);
  EXPECT_EQ(parseCueChunk(firstBytes(twoPoints, 51)).size(), 1U);
  EXPECT_EQ(parseCueChunk(firstBytes(twoPoints, 3)).size(), 0U);
}

TEST(WavReader, AShortChunkRemovesAnEarlierOne) {
  const ByteBuffer goodInst = inst(InstrumentChunk{60, -50, -128, 1, 2, 3, 255});
  const WavInfo kept = parseWav(wav({goodFormat, data({}), smpl(60, 9, {{}}), goodInst}));
  ASSERT_TRUE(kept.instrument);
  EXPECT_EQ(kept.instrument->fineTune, -50);
  EXPECT_EQ(kept.instrument->gain, -128);
  EXPECT_EQ(kept.instrument->highVelocity, 255);
  const WavInfo removed =
      parseWav(wav({goodFormat, data({}), smpl(60, 9, {{}}), goodInst, cue({{1, 1}}),
                    wavChunk("smpl", ByteBuffer(35)), wavChunk("inst", ByteBuffer(6)),
                    wavChunk("cue ", ByteBuffer(3))}));
  EXPECT_FALSE(removed.loops);
  EXPECT_EQ(removed.midiUnityNote, 0U);
  EXPECT_EQ(removed.midiPitchFraction, 0U);
  EXPECT_FALSE(removed.instrument);
  EXPECT_TRUE(removed.cuePoints.empty());
}

}  // namespace
}  // namespace corvana
