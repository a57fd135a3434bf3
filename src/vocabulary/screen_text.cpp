#include "vocabulary/screen_text.hpp"

#include "vocabulary/unicode.hpp"

namespace corvana {

std::string readableText(std::string_view text) {
  constexpr std::string_view replacement = "\xEF\xBF\xBD";
  std::string readable;
  while (!text.empty()) {
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t length = utf8SequenceLength(text);
    const bool control =
        (first < 0x20 && first != '\n') || first == 0x7F ||
        (first == 0xC2 && length == 2 && static_cast<unsigned char>(text[1]) < 0xA0);
    if (length == 0 || control) {
      readable += replacement;
      text.remove_prefix(length == 0 ? 1 : length);
    } else {
      readable += text.substr(0, length);
      text.remove_prefix(length);
    }
  }
  return readable;
}

}  // namespace corvana
