#include "vocabulary/screen_text.hpp"

#include <algorithm>

#include "vocabulary/unicode.hpp"

namespace corvana {
namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";

/// Of one character, in UTF-8.
bool actsOnScreen(std::string_view character) {
  if (character.size() == 1) return character[0] == '\x7F' || (character[0] & 0xE0) == 0;
  const auto isBetween = [&](std::string_view first, std::string_view last) {
    return character.size() == first.size() && first <= character && character <= last;
  };
  return isBetween("\u0080", "\u009F") ||  // control characters
         isBetween("\u2028", "\u202E") ||  // separators of lines and paragraphs, embeddings
         isBetween("\u2066", "\u2069");    // isolates
}

/// The character `kept` stays, whatever it does.
std::string readable(std::string_view text, std::string_view kept) {
  std::string result;
  while (!text.empty()) {
    const std::size_t length = utf8SequenceLength(text);
    const std::string_view character = text.substr(0, std::max<std::size_t>(length, 1));
    const bool stays = length != 0 && (character == kept || !actsOnScreen(character));
    result += stays ? character : replacement;
    text.remove_prefix(character.size());
  }
  return result;
}

}  // namespace

std::string readableText(std::string_view text) {
  return readable(text, "\n");
}

std::string readableLine(std::string_view text) {
  return readable(text, {});
}

std::string readableID(std::string id) {
  for (char& character : id)
    if (character < ' ' || character > '~') character = '?';
  return id;
}

}  // namespace corvana
