#include "aiff/aiff_writer.hpp"

#include <gtest/gtest.h>

#include "aiff/big_endian.hpp"
#include "aiff/extended80.hpp"
#include "support/audio_builder.hpp"
#include "support/temporary_folder.hpp"
#include "vocabulary/errors.hpp"

namespace corvana {
namespace {

using namespace test;

TEST(AiffWriter, ExtendedNumbersAreExact) {
  const struct {
    std::uint32_t number;
    const char* notation;
  } cases[] = {
      {0, "00 00 00 00 00 00 00 00 00 00"},          {1, "3F FF 80 00 00 00 00 00 00 00"},
      {22050, "40 0D AC 44 00 00 00 00 00 00"},      {44100, "40 0E AC 44 00 00 00 00 00 00"},
      {48000, "40 0E BB 80 00 00 00 00 00 00"},      {96000, "40 0F BB 80 00 00 00 00 00 00"},
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
  struct HeaderAccepted {};
  const TemporaryFolder folder;
  const AiffContent content{
      .channels = 1, .sampleSize = 8, .sampleRate = 44100, .markers = {}, .instrument = {}};
  const fs::path existing = folder.write("existing", "old");
  const auto write = [&](std::uint64_t frames) {
    writeAiff({existing, true, {}}, content, {frames, 1, 1},
              [](std::uint64_t, std::span<std::uint8_t>) { throw HeaderAccepted(); }, {});
  };
  constexpr std::uint64_t largest = 0xFFFFFFFE - 4 - 26 - 8 - 8;
  EXPECT_THROW(write(largest + 1), ConversionError);
  EXPECT_EQ(readText(existing), "old");
  EXPECT_THROW(write(largest), HeaderAccepted);
  EXPECT_EQ(readFile(existing),
            bytes("'FORM' FF FF FF FE 'AIFF' 'COMM' 00 00 00 12 00 01 FF FF FF D0 "
                  "00 08 40 0E AC 44 00 00 00 00 00 00 'SSND' FF FF FF D8 "
                  "00 00 00 00 00 00 00 00"));
}

}  // namespace
}  // namespace corvana
