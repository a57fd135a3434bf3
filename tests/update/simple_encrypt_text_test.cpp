#include "update/simple_encrypt_text.hpp"

#include <algorithm>
#include <gtest/gtest.h>

#include "vocabulary/unicode.hpp"

namespace corvana {
namespace {

constexpr std::size_t commonPeriod = std::size_t{7} * 11 * 13 * 17 * 19;

std::u16string roundTrip(std::u16string_view text) {
  return simpleEncryptText(simpleEncryptText(text, true), false);
}

// A version file that is on the server now has to stay readable, whatever is changed here.
TEST(SimpleEncryptText, KeepsItsFormat) {
  const std::u16string plain = u"$APP$:Corvana\n$URLINFO$ https://www.corvana.example/ $";
  const std::u16string scrambled =
      u"Ln\u0082\u0087`{ih\u00ACq]q\u00A7\u009C\u0094\u0096\u00A0\u008C\u009Aabc^\u00B6gie";
  EXPECT_EQ(utf8FromUtf16(simpleEncryptText(plain, true)), utf8FromUtf16(scrambled));
  EXPECT_EQ(simpleEncryptText(scrambled, false), plain);
}

TEST(SimpleEncryptText, EveryPositionHoldsEveryPrintableCharacter) {
  for (const char16_t character : {u'\n', maxScramblableCharacter}) {
    const std::u16string plain(commonPeriod + 50, character);
    const std::u16string scrambled = simpleEncryptText(plain, true);
    ASSERT_EQ(scrambled.size(), plain.size());
    EXPECT_LT(*std::max_element(scrambled.begin(), scrambled.end()), scrambledLimit);
    EXPECT_GE(*std::min_element(scrambled.begin(), scrambled.end()), u' ');
    EXPECT_EQ(scrambled.substr(commonPeriod), scrambled.substr(0, 50));
    EXPECT_EQ(simpleEncryptText(scrambled, false), plain);
  }
}

TEST(SimpleEncryptText, ShortensKnownPhrasesLongestFirstInAnyCase) {
  const std::pair<std::u16string_view, std::size_t> cases[] = {
      {u"https://www.corvana.example/resources/downloads/x", 5},
      {u"https://www.corvana.example/resources/x", 5},
      {u"https://www.corvana.example/x", 5},
      {u"https://www.x", 6},
      {u"https://x", 6},
      {u"CorvanaVantorCorvana", 12},
  };
  for (const auto& [plain, length] : cases) {
    EXPECT_EQ(simpleEncryptText(plain, true).size(), length) << utf8FromUtf16(plain);
    EXPECT_EQ(roundTrip(plain), plain);
  }
  EXPECT_EQ(roundTrip(u"CORVANA and hTTps://x #$C#"), u"Corvana and https://x Corvana");
}

TEST(SimpleEncryptText, RefusesWhatIsNoScrambledText) {
  const std::string binary =
      "Sorry, this text encoder / decoder is only suitable for simple text files. It is not "
      "suitable for binary files!\n";
  const struct {
    std::u16string_view text;
    bool encrypt;
    std::string message;
  } cases[] = {
      {u"", false, ""},
      {u"", true, ""},
      {u"\u00EF", false, binary},
      {u"\U0001F600", true, binary},
      // The first shift is 40, the second 45. The first fault in the text counts.
      {u"\n", false, "simpleEncryptText: ungültiger Zeichenwert -30\n"},
      {u"\u00EE\n\u00EF", false, "simpleEncryptText: ungültiger Zeichenwert -35\n"},
      {u"\u00EE\u00EF\n", false, binary},
  };
  for (const auto& c : cases) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(simpleEncryptText(c.text, c.encrypt), u"");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), c.message) << utf8FromUtf16(c.text);
  }
}

TEST(FirstUnsafeCharacter, NamesThePlace) {
  EXPECT_EQ(firstUnsafeCharacter(u"Corvana, https://x ~\t\r\n"), std::nullopt);
  EXPECT_EQ(firstUnsafeCharacter(u"to cor\nvana"), std::nullopt);
  EXPECT_EQ(firstUnsafeCharacter(u"a corvana"), 2U);
  EXPECT_EQ(firstUnsafeCharacter(u"a corvana \u2013"), 10U);  // out of range is named first
  EXPECT_EQ(firstUnsafeCharacter(u"# #$C#"), 2U);
  EXPECT_EQ(firstUnsafeCharacter(u"#$cCorvana"), 0U);  // the name's code completes another one
}

}  // namespace
}  // namespace corvana
