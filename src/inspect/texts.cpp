#include "inspect/texts.hpp"

#include <algorithm>
#include <string_view>

#include "aiff/mac_roman.hpp"
#include "inspect/file_description.hpp"
#include "vocabulary/unicode.hpp"
#include "wav/wav_texts.hpp"

namespace corvana {
namespace {

/// How much of `text` is UTF-8, from its start.
std::size_t utf8Size(std::string_view text) {
  std::size_t size = 0;
  while (const std::size_t length = utf8SequenceLength(text.substr(size)))
    size += length;
  return size;
}

/// At most maxTextSize bytes, which are cut between characters.
std::string bounded(std::string text) {
  if (text.size() > maxTextSize) text.resize(utf8Size(text.substr(0, maxTextSize)));
  return text;
}

/// Every kind of line break becomes a line feed.
std::string withLineFeeds(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' && text.substr(i + 1, 1) == "\n") continue;
    result += text[i] == '\r' ? '\n' : text[i];
  }
  return result;
}

/// `decode` is for what is not UTF-8.
std::string textOf(ByteView bytes, std::string (*decode)(ByteView)) {
  constexpr std::size_t longestCharacter = 4;
  const bool isCut = bytes.size() > maxTextSize;
  if (isCut) bytes = bytes.first(maxTextSize);
  while (!bytes.empty() && (bytes.back() == 0 || bytes.back() == ' '))
    bytes = bytes.first(bytes.size() - 1);
  std::string text(bytes.begin(), bytes.end());
  const std::size_t valid = utf8Size(text);
  if (valid == text.size() || (isCut && text.size() - valid < longestCharacter))
    text.resize(valid);
  else
    text = bounded(decode(bytes));
  return withLineFeeds(text);
}

}  // namespace

std::string wavText(ByteView bytes) {
  const auto end = std::find(bytes.begin(), bytes.end(), std::uint8_t{0});
  return textOf(bytes.first(static_cast<std::size_t>(end - bytes.begin())), decodeLatin1);
}

std::string aiffText(ByteView bytes) {
  return textOf(bytes, decodeMacRoman);
}

}  // namespace corvana
