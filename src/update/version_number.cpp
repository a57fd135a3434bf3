#include "update/version_number.hpp"

#include <algorithm>
#include <charconv>
#include <string>
#include <system_error>

#include "update/text_search.hpp"

namespace corvana {
namespace {

bool isSeparator(char16_t character) {
  return character == u'.' || character == u' ' || character == u',';
}

bool isIgnored(char16_t character) {
  return (character >= u'a' && character <= u'z') || (character >= u'A' && character <= u'Z') ||
         character == u'#' || character == u'!' || character == u'\r' || character == u'\n';
}

/// The number with at least three digits.
std::u16string componentText(std::int64_t number) {
  std::string digits = std::to_string(number);
  const std::size_t sign = digits.starts_with('-') ? 1 : 0;
  if (digits.size() < sign + 3) digits.insert(sign, sign + 3 - digits.size(), '0');
  return {digits.begin(), digits.end()};
}

}  // namespace

std::int64_t versionNumber(std::u16string_view text) {
  std::u16string components;
  for (const char16_t character : text) {
    if (isSeparator(character)) {
      components += u'.';
    } else if (!isIgnored(character)) {
      components += character;
    }
  }
  std::u16string_view rest = components;
  if (rest.find(u'.') == std::u16string_view::npos) return leadingInteger(rest);

  std::u16string number;
  while (true) {
    const std::size_t stop = rest.find(u'.');
    number += componentText(leadingInteger(rest.substr(0, stop)));
    if (stop == std::u16string_view::npos) break;
    rest.remove_prefix(stop + 1);
  }
  return leadingInteger(number);
}

std::int64_t leadingInteger(std::u16string_view text) {
  while (!text.empty() && isWhiteSpace(text.front()))
    text.remove_prefix(1);
  std::string digits;
  if (text.starts_with(u'-')) digits = "-";
  if (text.starts_with(u'-') || text.starts_with(u'+')) text.remove_prefix(1);
  for (const char16_t character : text) {
    if (character < u'0' || character > u'9') break;
    digits += static_cast<char>(character);
  }
  std::int64_t number = 0;
  const char* end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, number);
  return error == std::errc() ? number : 0;
}

}  // namespace corvana
