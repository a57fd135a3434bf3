#include "update/version_number.hpp"

#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "vocabulary/unicode.hpp"

namespace corvana {
namespace {

// A wide component shifts the others, one beyond 64 bits is 0, a sign counts in its component.
TEST(VersionNumber, Table) {
  const std::pair<std::int64_t, std::vector<std::u16string_view>> cases[] = {
      {0, {u"", u"-", u"alpha", u"\u00E91", u".-7", u"+-1", u"1.2.3.4.5.6.7.8"}},
      {0, {u"9223372036854775808", u"-9223372036854775809"}},
      {1, {u"#1!", u"1.-5"}},
      {12, {u"1\r\n2", u"\t12", u"\u00A0\t12\t", u"12\u0661", u"00000000000000000000000012"}},
      {1002, {u" 1.2", u"1\t.2"}},
      {-1002, {u"-1.2"}},
      {1005, {u"1.+5"}},
      {1010, {u"1.10"}},
      {1023, {u"1.2b3"}},
      {1002003004, {u"A1.Z2.a3,z4"}},
      {12345, {u"1.2345"}},
      {1000002, {u"1.\u00E95.2"}},
      {1000003, {u"1.99999999999999999999.3"}},
      {1002000, {u"1.2 ", u"1.2.0"}},
      {1002003, {u"1.2.3", u"1,2 3"}},
      {2003004005006007008, {u"0.2.3.4.5.6.7.8"}},
      {std::numeric_limits<std::int64_t>::max(), {u"9223372036854775807"}},
      {std::numeric_limits<std::int64_t>::min(), {u"-9223372036854775808"}},
  };
  for (const auto& [number, texts] : cases)
    for (const std::u16string_view text : texts)
      EXPECT_EQ(versionNumber(text), number) << utf8FromUtf16(text);
}

}  // namespace
}  // namespace corvana
