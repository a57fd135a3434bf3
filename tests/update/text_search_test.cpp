#include "update/text_search.hpp"

#include <gtest/gtest.h>
#include <utility>

#include "vocabulary/unicode.hpp"

namespace corvana {
namespace {

TEST(FindPosition, FindsFromTheStartPositionOn) {
  const struct {
    std::u16string_view text;
    std::u16string_view wanted;
    std::int64_t start;
    std::int64_t position;
  } cases[] = {
      {u"abcabc", u"abc", 1, 1}, {u"abcabc", u"abc", 2, 4},  {u"abcabc", u"abc", 4, 4},
      {u"abcabc", u"abc", 5, 0}, {u"abcabc", u"abc", -7, 1}, {u"abcabc", u"c", 6, 6},
      {u"abcabc", u"c", 8, 0},   {u"abc", u"abcd", 1, 0},    {u"abc", u"", 1, 0},
      {u"", u"a", 1, 0},         {u"aab", u"ab", 1, 2},      {u"\U0001F600x", u"x", 1, 3},
  };
  for (const auto& c : cases)
    EXPECT_EQ(findPosition(c.text, c.wanted, c.start), c.position)
        << utf8FromUtf16(c.text) << " / " << utf8FromUtf16(c.wanted) << " from " << c.start;
}

// Neighbours of letters are no letters, accents are not case.
TEST(FindPosition, DisregardsCase) {
  EXPECT_EQ(findPosition(u"AzZ", u"aZz", 1), 1);
  EXPECT_EQ(findPosition(u"\u00C0\u00E6", u"\u00E0\u00C6", 1), 1);
  for (const auto& [text, wanted] : {std::pair(u"@", u"`"), {u"[", u"{"}, {u"k\u00E4", u"KA"}})
    EXPECT_EQ(findPosition(text, wanted, 1), 0) << utf8FromUtf16(text);
}

TEST(BeginsWith, ComparesTheFirstCharactersOnly) {
  EXPECT_TRUE(beginsWith(u"CORVANA Pro", u"Corvana"));
  EXPECT_FALSE(beginsWith(u" Corvana", u"Corvana"));
  EXPECT_FALSE(beginsWith(u"Corvan", u"Corvana"));
}

TEST(ReplaceAll, GoesFromLeftToRightOverTheOriginalText) {
  EXPECT_EQ(replaceAll(u"#+#+#", u"#+#", u"\n"), u"\n+#");
  EXPECT_EQ(replaceAll(u"aAa", u"a", u"aa"), u"aaaaaa");
}

TEST(Trimmed, TakesWhiteSpaceAndLineBreaksFromBothEnds) {
  EXPECT_EQ(trimmed(u" \t\r\n\v\f\u0085\u00A0\u2003\u2028\u3000a b\u202F\u2029"), u"a b");
  EXPECT_EQ(trimmed(u"\u00AD\u200B"), u"\u00AD\u200B");  // soft hyphen, zero-width space
  EXPECT_EQ(trimmed(u" \n"), u"");
}

}  // namespace
}  // namespace corvana
