#include "update/text_search.hpp"

#include <algorithm>
#include <array>

namespace corvana {
namespace {

struct Folding {
  char16_t from;
  std::u16string_view to;
};

/// The foldings that are not a plain step from a capital letter to its small one.
constexpr std::array<Folding, 14> specialFoldings = {{
    {u'\u00B5', u"\u03BC"},  // micro sign: the Greek letter
    {u'\u00DF', u"ss"},      // ß
    {u'\u017F', u"s"},       // long s
    {u'\u039C', u"\u03BC"},  // Greek capital mu
    {u'\u1E9E', u"ss"},      // capital ß
    {u'\u212A', u"k"},       // Kelvin sign
    {u'\u212B', u"\u00E5"},  // Ångström sign
    {u'\uFB00', u"ff"},      // from here on ligatures
    {u'\uFB01', u"fi"},
    {u'\uFB02', u"fl"},
    {u'\uFB03', u"ffi"},
    {u'\uFB04', u"ffl"},
    {u'\uFB05', u"st"},
    {u'\uFB06', u"st"},
}};

bool isCapital(char16_t character) {
  return (character >= u'A' && character <= u'Z') ||
         (character >= u'\u00C0' && character <= u'\u00DE' && character != u'\u00D7');
}

std::u16string folded(char16_t character) {
  if (isCapital(character)) return {static_cast<char16_t>(character + 0x20)};
  for (const Folding& folding : specialFoldings) {
    if (character == folding.from) return std::u16string(folding.to);
  }
  return {character};
}

std::u16string folded(std::u16string_view text) {
  std::u16string result;
  for (const char16_t character : text)
    result += folded(character);
  return result;
}

/// How many characters at the start of `text` fold to `wanted`, which is not empty; 0 when they
/// do not. Half of a character never matches: "s" is not found in "ß".
std::size_t matchLength(std::u16string_view text, std::u16string_view wanted) {
  std::size_t length = 0;
  while (!wanted.empty()) {
    if (length == text.size()) return 0;
    const std::u16string character = folded(text[length]);
    if (!wanted.starts_with(character)) return 0;
    wanted.remove_prefix(character.size());
    ++length;
  }
  return length;
}

struct Match {
  std::size_t index = std::u16string_view::npos;
  std::size_t length = 0;
};

/// The first match at or after `index`; `wanted` is folded and not empty.
Match findFolded(std::u16string_view text, std::u16string_view wanted, std::size_t index) {
  for (; index < text.size(); ++index) {
    if (const std::size_t length = matchLength(text.substr(index), wanted); length > 0)
      return {index, length};
  }
  return {};
}

bool isLineBreak(char16_t character) {
  return (character >= u'\n' && character <= u'\r') || character == u'\u0085' ||
         character == u'\u2028' || character == u'\u2029';
}

}  // namespace

std::int64_t findPosition(std::u16string_view text, std::u16string_view wanted,
                          std::int64_t start) {
  if (wanted.empty()) return 0;
  const auto index = static_cast<std::size_t>(std::max<std::int64_t>(start, 1) - 1);
  const Match match = findFolded(text, folded(wanted), index);
  return match.length == 0 ? 0 : static_cast<std::int64_t>(match.index) + 1;
}

bool beginsWith(std::u16string_view text, std::u16string_view prefix) {
  return prefix.empty() || matchLength(text, folded(prefix)) > 0;
}

std::u16string replaceAll(std::u16string_view text, std::u16string_view wanted,
                          std::u16string_view replacement) {
  if (wanted.empty()) return std::u16string(text);
  const std::u16string foldedWanted = folded(wanted);
  std::u16string result;
  std::size_t copied = 0;
  while (true) {
    const Match match = findFolded(text, foldedWanted, copied);
    if (match.length == 0) break;
    result += text.substr(copied, match.index - copied);
    result += replacement;
    copied = match.index + match.length;
  }
  result += text.substr(copied);
  return result;
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
