#include "update/text_search.hpp"

#include <algorithm>
#include <cstddef>

namespace corvana {
namespace {

char16_t folded(char16_t character) {
  const bool isCapital = (character >= u'A' && character <= u'Z') ||
                         (character >= u'\u00C0' && character <= u'\u00C6');
  return isCapital ? static_cast<char16_t>(character + 0x20) : character;
}

bool isSameLetter(char16_t first, char16_t second) {
  return folded(first) == folded(second);
}

/// Index of the first match at or after `index`, which lies inside `text`; its size if there is
/// none.
std::size_t findIndex(std::u16string_view text, std::u16string_view wanted, std::size_t index) {
  const auto match = std::search(text.begin() + static_cast<std::ptrdiff_t>(index), text.end(),
                                 wanted.begin(), wanted.end(), isSameLetter);
  return static_cast<std::size_t>(match - text.begin());
}

bool isLineBreak(char16_t character) {
  return (character >= u'\n' && character <= u'\r') || character == u'\u0085' ||
         character == u'\u2028' || character == u'\u2029';
}

}  // namespace

std::int64_t findPosition(std::u16string_view text, std::u16string_view wanted,
                          std::int64_t start) {
  const auto first = static_cast<std::size_t>(std::max<std::int64_t>(start, 1) - 1);
  if (wanted.empty() || first >= text.size()) return 0;
  const std::size_t index = findIndex(text, wanted, first);
  return index == text.size() ? 0 : static_cast<std::int64_t>(index) + 1;
}

bool beginsWith(std::u16string_view text, std::u16string_view prefix) {
  return text.size() >= prefix.size() &&
         std::equal(prefix.begin(), prefix.end(), text.begin(), isSameLetter);
}

std::u16string replaceAll(std::u16string_view text, std::u16string_view wanted,
                          std::u16string_view replacement, std::size_t maxSize) {
  std::u16string result;
  if (wanted.empty()) return result.append(text);
  std::size_t copied = 0;
  while (true) {
    const std::size_t index = findIndex(text, wanted, copied);
    result += text.substr(copied, index - copied);
    if (result.size() > maxSize) return {};
    if (index == text.size()) return result;
    result += replacement;
    copied = index + wanted.size();
  }
}

bool isWhiteSpace(char16_t character) {
  return character == u'\t' || character == u' ' || character == u'\u00A0' ||
         character == u'\u1680' || (character >= u'\u2000' && character <= u'\u200A') ||
         character == u'\u202F' || character == u'\u205F' || character == u'\u3000';
}

std::u16string_view trimmed(std::u16string_view text) {
  const auto isBlank = [](char16_t character) {
    return isWhiteSpace(character) || isLineBreak(character);
  };
  while (!text.empty() && isBlank(text.front()))
    text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back()))
    text.remove_suffix(1);
  return text;
}

}  // namespace corvana
