#include "update/text_search.hpp"

#include <gtest/gtest.h>

#include "platform/unicode.hpp"

namespace corvana {
namespace {

struct SearchCase {
  std::u16string_view text;
  std::u16string_view wanted;
  std::int64_t start;
  std::int64_t position;
};

TEST(FindPosition, FindsFromTheStartPositionOn) {
  const SearchCase cases[] = {
      {u"abcabc", u"abc", 1, 1},    {u"abcabc", u"abc", 2, 4},
      {u"abcabc", u"abc", 4, 4},    {u"abcabc", u"abc", 5, 0},
      {u"abcabc", u"abc", 0, 1},    {u"abcabc", u"abc", -7, 1},
      {u"abcabc", u"c", 6, 6},      {u"abcabc", u"c", 7, 0},
      {u"abcabc", u"c", 8, 0},      {u"abc", u"abcd", 1, 0},
      {u"abc", u"", 1, 0},          {u"", u"a", 1, 0},
      {u"aab", u"ab", 1, 2},        {u"$VerMac$", u"$VERMAC$", 1, 1},
      {u"\U0001F600x", u"x", 1, 3},  // positions count UTF-16 units
  };
  for (const SearchCase& c : cases)
    EXPECT_EQ(findPosition(c.text, c.wanted, c.start), c.position)
        << utf8FromUtf16(c.text) << " / " << utf8FromUtf16(c.wanted) << " from " << c.start;
}

TEST(FindPosition, DisregardsCase) {
  const SearchCase cases[] = {
      {u"xAzZ", u"aZz", 1, 2},
      {u"@[`{", u"`{@[", 1, 0},  // neighbours of the letters are no letters
      {u"@", u"`", 1, 0},
      {u"[", u"{", 1, 0},
      {u"\u00C0\u00DE", u"\u00E0\u00FE", 1, 1},  // À Þ
      {u"\u00E9", u"\u00C9", 1, 1},              // é É
      {u"\u00CF", u"\u00EF", 1, 1},              // Ï ï, whose small form is beyond the range
      {u"\u00D7", u"\u00F7", 1, 0},              // × ÷
      {u"\u00DF", u"\u00FF", 1, 0},              // ß ÿ
      {u"\u00B5", u"\u03BC", 1, 1},              // micro sign and Greek mu
      {u"\u00B5", u"\u039C", 1, 1},
      {u"stra\u00DFe", u"STRASSE", 1, 1},
      {u"STRASSE", u"stra\u1E9Ee", 1, 1},
      {u"\u00DF", u"s", 1, 0},  // no match inside a character
      {u"s\u00DF", u"ss", 1, 2},
      {u"sk\u00E5", u"\u017F\u212A\u212B", 1, 1},
      {u"waffle", u"\uFB04", 1, 3},
      {u"k\u00E4", u"KA", 1, 0},  // accents are not case
  };
  for (const SearchCase& c : cases)
    EXPECT_EQ(findPosition(c.text, c.wanted, c.start), c.position)
        << utf8FromUtf16(c.text) << " / " << utf8FromUtf16(c.wanted);
}

TEST(BeginsWith, ComparesTheFirstCharactersOnly) {
  EXPECT_TRUE(beginsWith(u"CORVANA Pro", u"Corvana"));
  EXPECT_TRUE(beginsWith(u"\u00DFa", u"SS"));
  EXPECT_FALSE(beginsWith(u" Corvana", u"Corvana"));
  EXPECT_FALSE(beginsWith(u"Corvan", u"Corvana"));
}

TEST(ReplaceAll, GoesFromLeftToRightOverTheOriginalText) {
  EXPECT_EQ(replaceAll(u"#+#+#", u"#+#", u"\n"), u"\n+#");
  EXPECT_EQ(replaceAll(u"aAa", u"a", u"aa"), u"aaaaaa");
  EXPECT_EQ(replaceAll(u"x\u00DFy", u"Ss", u"-"), u"x-y");
  EXPECT_EQ(replaceAll(u"abc", u"d", u"-"), u"abc");
}

TEST(Trimmed, TakesWhiteSpaceAndLineBreaksFromBothEnds) {
  EXPECT_EQ(trimmed(u" \t\r\n\v\f\u0085\u00A0\u2003\u2028\u3000a b\u202F\u2029"), u"a b");
  EXPECT_EQ(trimmed(u"\u00AD\u200B"), u"\u00AD\u200B");  // soft hyphen, zero-width space
  EXPECT_EQ(trimmed(u" \n"), u"");
}

}  // namespace
}  // namespace corvana
