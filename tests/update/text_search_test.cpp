#include "update/text_search.hpp"

#include <gtest/gtest.h>

#include "vocabulary/unicode.hpp"

namespace corvana {
namespace {

// Neighbours of letters are no letters, accents are not case.
TEST(FindPosition, FindsFromTheStartPositionOnInAnyCase) {
  const struct {
    std::u16string_view text;
    std::u16string_view wanted;
    std::int64_t start;
    std::int64_t position;
  } cases[] = {
      {u"abcabc", u"abc", 4, 4},  {u"abcabc", u"abc", 5, 0},
      {u"abcabc", u"abc", -7, 1}, {u"abcabc", u"c", 6, 6},
      {u"abc", u"abcd", 1, 0},    {u"abc", u"", 1, 0},
      {u"aab", u"ab", 1, 2},      {u"AzZ", u"aZz", 1, 1},
      {u"@", u"`", 1, 0},         {u"[", u"{", 1, 0},
      {u"k\u00E4", u"KA", 1, 0},  {u"\u00C0\u00E6", u"\u00E0\u00C6", 1, 1},
  };
  for (const auto& c : cases)
    EXPECT_EQ(findPosition(c.text, c.wanted, c.start), c.position)
        << utf8FromUtf16(c.text) << " / " << utf8FromUtf16(c.wanted) << " from " << c.start;
}

TEST(ReplaceAll, GoesFromLeftToRightOverTheOriginalText) {
  EXPECT_EQ(replaceAll(u"#+#+#aAa", u"#+#", u"\n"), u"\n+#aAa");
  EXPECT_EQ(replaceAll(u"aAa", u"a", u"aa"), u"aaaaaa");
}

TEST(Trimmed, TakesWhiteSpaceAndLineBreaksFromBothEnds) {
  EXPECT_EQ(trimmed(u" \t\r\n\v\f\u0085\u00A0\u2000\u200A\u2028\u3000a b\u202F\u2029"), u"a b");
  for (const std::u16string_view text : {u"\u00AD\u200B", u""})  // soft hyphen, zero-width space
    EXPECT_EQ(trimmed(text), text);
}

}  // namespace
}  // namespace corvana
