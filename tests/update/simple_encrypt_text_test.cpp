#include "update/simple_encrypt_text.hpp"

#include <gtest/gtest.h>

#include "vocabulary/unicode.hpp"

namespace corvana {
namespace {

// A version file that is on the server now has to stay readable, whatever is changed here.
TEST(SimpleEncryptText, KeepsItsFormat) {
  const std::u16string plain =
      u"$APP$:Corvana\nVantor https://www.corvana.example/ https://www.x https://x "
      u"https://www.corvana.example/resources/x "
      u"https://www.corvana.example/resources/downloads/x~";
  const std::u16string scrambled =
      u"Ln\u0082\u0087`{ih\u00ACq]pv\u00C0kmuj\u00C2`bc^\u00A7vl\u00B9fgm\u00B6\u0084{\u00CAfgm"
      u"\u00C0c\u00B0]ed\u00A9b\u00BC\u00C7";
  EXPECT_EQ(utf8FromUtf16(simpleEncryptText(plain, true)), utf8FromUtf16(scrambled));
  EXPECT_EQ(simpleEncryptText(scrambled, false), plain);
  const std::u16string otherCase = simpleEncryptText(u"CORVANA and hTTps://x #$C#", true);
  EXPECT_EQ(simpleEncryptText(otherCase, false), u"Corvana and https://x Corvana");
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
      {u"\u00EF", true, binary},
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
  const std::pair<std::u16string_view, std::optional<std::size_t>> cases[] = {
      {u"Corvana, https://x ~\t\r\n\u0088 to cor\nvana", std::nullopt},
      {u"a corvana", 2},
      {u"a corvana \u0089", 10},  // out of range is named first
      {u"# #$C#", 2},
      {u"#$cCorvana", 0},  // the name's code completes another one
  };
  for (const auto& [text, index] : cases)
    EXPECT_EQ(firstUnsafeCharacter(text), index) << utf8FromUtf16(text);
}

}  // namespace
}  // namespace corvana
