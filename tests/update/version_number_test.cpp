#include "update/version_number.hpp"

#include <gtest/gtest.h>
#include <limits>

#include "platform/unicode.hpp"

namespace corvana {
namespace {

constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();

struct NumberCase {
  std::u16string_view text;
  std::int64_t number;
};

TEST(VersionNumber, Table) {
  const NumberCase cases[] = {
      {u"", 0},
      {u"1.2.3", 1002003},
      {u"1.10", 1010},
      {u"1.9", 1009},
      {u"2", 2},
      {u"1.2", 1002},
      {u"1.2.0", 1002000},
      {u"1.1.5", 1001005},
      {u"Version 2.1", 2001},
      {u"1.2b3", 1023},
      {u"1,2 3", 1002003},
      {u"1.2 ", 1002000},
      {u" 1.2", 1002},
      {u"1\r\n2", 12},
      {u"#1!", 1},
      {u"..", 0},
      {u"alpha", 0},
      {u"\u00E9"
       "1",
       0},  // a letter that is not deleted
      {u"1.\u00E9"
       "5.2",
       1000002},
      {u"1.2345", 12345},  // a wide component shifts the others
      {u"1.+5", 1005},
      {u"1.-5", 1},  // "001-005"
      {u"-1.2", -1002},
      {u"-1", -1},
      {u".-7", 0},  // "000-007"
      {u"1\t.2", 1002},
      {u"1.99999999999999999999.3", 1000003},  // a component beyond 64 bits is 0
      {u"1.2.3.4.5.6.7", 1002003004005006007},
      {u"1.2.3.4.5.6.7.8", 0},
      {u"0.2.3.4.5.6.7.8", 2003004005006007008},
      {u"9223372036854775807", largest},
      {u"9223372036854775808", 0},
  };
  for (const NumberCase& c : cases)
    EXPECT_EQ(versionNumber(c.text), c.number) << utf8FromUtf16(c.text);
}

TEST(LeadingInteger, Table) {
  const NumberCase cases[] = {
      {u"", 0},
      {u"12", 12},
      {u" \t\u00A0"
       "12 ",
       12},
      {u"\n12", 0},
      {u"+12", 12},
      {u"-12", -12},
      {u"--12", 0},
      {u"+-12", 0},
      {u"- 12", 0},
      {u"12x3", 12},
      {u"x12", 0},
      {u"0012", 12},
      {u"-", 0},
      {u"\u0661", 0},
      {u"1\u0661", 1},  // Arabic-Indic digit
      {u"9223372036854775807", largest},
      {u"9223372036854775808", 0},
      {u"-9223372036854775808", smallest},
      {u"-9223372036854775809", 0},
      {u"00000000000000000000000001", 1},
  };
  for (const NumberCase& c : cases)
    EXPECT_EQ(leadingInteger(c.text), c.number) << utf8FromUtf16(c.text);
}

}  // namespace
}  // namespace corvana
