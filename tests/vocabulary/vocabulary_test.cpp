#include <gtest/gtest.h>
#include <limits>

#include "vocabulary/messages.hpp"
#include "vocabulary/note_name.hpp"
#include "vocabulary/screen_text.hpp"
#include "vocabulary/text_format.hpp"
#include "vocabulary/unicode.hpp"

namespace corvana {
namespace {

using namespace std::string_view_literals;

const Language english;

TEST(TextFormat, DecimalFormOfDoublesIsTheShortestThatReadsBack) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  const std::pair<double, const char*> cases[] = {
      {0, "0.0"},
      {0.1 + 0.2, "0.30000000000000004"},
      {9999999999999998.0, "9999999999999998.0"},
      {1e16, "1e+16"},
      {1.7976931348623157e308, "1.7976931348623157e+308"},
      {0.0001, "0.0001"},
      {0.00009999, "9.999e-05"},
      {5e-324, "5e-324"},
      {-infinity, "-inf"},
      {std::numeric_limits<double>::quiet_NaN(), "nan"},
  };
  for (const auto& [number, text] : cases)
    EXPECT_EQ(decimalText(number), text);
}

TEST(TextFormat, FillsPlacesInOrderAndByNumber) {
  EXPECT_EQ(fillText("%@ – %@!", {"a", "b"}), "a – b!");
  EXPECT_EQ(fillText("%2$@ %1$@ %2$@", {"a", "b"}), "b a b");
  EXPECT_EQ(fillText("<%@|%@|%9$@>", {"a"}), "<a||>") << "places without a text";
  EXPECT_EQ(fillText("%@ %@", {"%@ %1$@", "b"}), "%@ %1$@ b") << "texts are no formats";
  EXPECT_EQ(fillText("100 % %0$@ %1$ %d %", {"a"}), "100 % %0$@ %1$ %d %");
  EXPECT_EQ(fillText("%@", {"a\0b"sv}), "a\0b"sv);
}

TEST(Unicode, PairsOfSurrogatesAreOneCharacterUpToTheEnd) {
  EXPECT_EQ(utf8FromUtf16(utf16FromUtf8("é音\xFF🎹")), "é音\uFFFD🎹");
}

TEST(ScreenText, ReadableTextDrivesNoTerminal) {
  const std::string bad = "\xEF\xBF\xBD";
  const std::pair<std::string_view, std::string> cases[] = {
      {"Flügel – 音.wav\n🎹", "Flügel – 音.wav\n🎹"},
      {"\x1b[2Jx\r\t\x7f", bad + "[2Jx" + bad + bad + bad},
      {"a\0b"sv, "a" + bad + "b"},
      {"\xC2\x9B|\xC2\xA0", bad + "|\xC2\xA0"},  // a one-character escape; a blank
      {"\u2027\u2028\u2029\u202A\u202E\u202F", "\u2027" + bad + bad + bad + bad + "\u202F"},
      {"\u2065\u2066\u2069\u206A", "\u2065" + bad + bad + "\u206A"},
      {"\u200E\u200F\u061C", "\u200E\u200F\u061C"},
      {"\xE9t\xE9", bad + "t" + bad},                         // Latin-1
      {"\xE2\x82", bad + bad},                                // cut
      {"\xC0\xAF\xE0\x80\x80", bad + bad + bad + bad + bad},  // overlong
      {"\xED\xA0\x80", bad + bad + bad},                      // surrogate
      {"\xF4\x90\x80\x80", bad + bad + bad + bad},            // beyond the last character
  };
  for (const auto& [text, readable] : cases)
    EXPECT_EQ(readableText(text), readable);
  EXPECT_EQ(readableLine("\na\n🎹\x1b\n"), bad + "a" + bad + "🎹" + bad + bad);
}

TEST(NoteName, IsFoundInNamesOfFiles) {
  constexpr std::uint8_t none = 255;
  const struct {
    const char* name;
    int note;  ///< with note 60 called C4
  } cases[] = {
      {"Piano C#3.wav", 49}, {"bass_a2.aif", 45},
      {"Bb-1 soft.wav", 10}, {"Cb4", 59},
      {"C-1.wav", 0},        {"G9", 127},
      {"A9.wav", none},      {"C3 to D3.wav", 50},
      {"60_Pad.wav", 60},    {"Pad 61", 61},
      {"60 C3.wav", 48},     {"Take 20.wav", none},
      {"Pad 109.wav", none}, {"Kick 060.wav", none},
      {"B01.wav", none},     {"Abc3.wav", none},
      {"éC3.wav", none},     {"H3.wav", none},
      {"a 61 b.wav", none},  {"Loop-C3.wav", 48},
      {".wav", none},        {"", none},
      {"Piano C3-64", 48},   {"C3-01.wav", 48},
      {"Piano_C3-1", 48},    {"Soft-C3-127", 48},
      {"DB4", 61},           {"AB3 BB-1", 10},
      {"dB4", none},         {"60-Pad", 60},
      {"90 bpm loop", none}, {"90_BPM C3", 48},
      {"bpm 90", none},      {"Pad_TAKE-60", none},
      {"61 Take", 61},       {"Kit 2026-11-24", none},
      {"Pad 60-80", none},   {"Pad 1 60", 60},
  };
  for (const auto& [name, note] : cases)
    EXPECT_EQ(noteInFileName(name, 4).value_or(none), note) << name;
  EXPECT_EQ(noteInFileName("C3", 3), 60);
}

TEST(Summary, NamesWhatIsThere) {
  EXPECT_EQ(makeSummary({8, 6, 4294967295, 61, -12, 0, 0, 3}, english),
            "8-bit, 6 channels, 4294967295 Hz, root key 61 (-12 ct), 3 cue points");
  EXPECT_EQ(makeSummary({24, 1, 48000, 0, 7, 1, 1, 1}, english),
            "24-bit, mono, 48000 Hz, root key 0 (+7 ct), 1 loop, 1 marker, 1 cue point");
}

}  // namespace
}  // namespace corvana
