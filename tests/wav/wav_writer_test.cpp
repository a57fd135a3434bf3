#include "wav/wav_writer.hpp"

#include <gtest/gtest.h>

#include "support/audio_builder.hpp"
#include "support/temporary_folder.hpp"
#include "vocabulary/errors.hpp"

namespace corvana {
namespace {

using namespace test;

TEST(WavWriter, FormatChunk) {
  const char* guid = "01 00 00 00 00 00 10 00 80 00 00 AA 00 38 9B 71";
  const struct {
    const char* name;
    ByteBuffer actual;
    std::string expected;
  } cases[] = {
      {"mono 16", buildFormatChunk(1, 44100, 16, 2, 2),
       "01 00 01 00 44 AC 00 00 88 58 01 00 02 00 10 00"},
      {"stereo 24", buildFormatChunk(2, 44100, 24, 3, 6),
       "01 00 02 00 44 AC 00 00 98 09 04 00 06 00 18 00"},
      {"stereo 20", buildFormatChunk(2, 48000, 20, 3, 6),
       "FE FF 02 00 80 BB 00 00 00 65 04 00 06 00 18 00 16 00 14 00 03 00 00 00" +
           std::string(guid)},
      {"mono 12", buildFormatChunk(1, 1, 12, 2, 2),
       "FE FF 01 00 01 00 00 00 02 00 00 00 02 00 10 00 16 00 0C 00 04 00 00 00" +
           std::string(guid)},
      {"six channels", buildFormatChunk(6, 44100, 16, 2, 12),
       "FE FF 06 00 44 AC 00 00 30 13 08 00 0C 00 10 00 16 00 10 00 00 00 00 00" +
           std::string(guid)},
      {"bytes per second above 32 bits", buildFormatChunk(1, 4'000'000'000, 16, 2, 2),
       "01 00 01 00 00 28 6B EE 00 50 D6 DC 02 00 10 00"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(c.actual, bytes(c.expected)) << c.name;
}

TEST(WavWriter, RefusesWhatTheRiffSizeCannotHold) {
  const TemporaryFolder folder;
  const ByteBuffer format = buildFormatChunk(1, 44100, 8, 1, 1);
  constexpr std::uint64_t largest = 0xFFFFFFFE - 4 - 24 - 8;  // one more needs a pad byte too
  const fs::path existing = folder.write("existing", "old");
  EXPECT_THROW(WavFileWriter({existing, true, {}}, format, largest + 1, {}), ConversionError);
  EXPECT_THROW(WavFileWriter({folder / "sub/new", true, {}}, format, 1ULL << 32, {}),
               ConversionError);
  EXPECT_THROW(WavFileWriter({existing, true, {}}, format, largest, {{}, {}, ByteBuffer(7)}),
               ConversionError);
  EXPECT_EQ(folder.files(), std::vector<std::string>{"existing"});
  EXPECT_EQ(readText(existing), "old");
  WavFileWriter fits({existing, true, {}}, format, largest, {});
  fits.finish();
  EXPECT_EQ(firstBytes(readFile(existing), 8), bytes("'RIFF' FE FF FF FF"));
}

}  // namespace
}  // namespace corvana
