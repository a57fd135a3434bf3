#include "aiff/mac_roman.hpp"

#include <algorithm>
#include <array>

#include "vocabulary/unicode.hpp"

namespace corvana {
namespace {

/// The characters of the bytes from 0x80 on; below that the set is ASCII.
// clang-format off
constexpr std::array<char16_t, 128> upperHalf = {
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1,  // Ä Å Ç É Ñ Ö Ü á
    0x00E0, 0x00E2, 0x00E4, 0x00E3, 0x00E5, 0x00E7, 0x00E9, 0x00E8,  // à â ä ã å ç é è
    0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3,  // ê ë í ì î ï ñ ó
    0x00F2, 0x00F4, 0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC,  // ò ô ö õ ú ù û ü
    0x2020, 0x00B0, 0x00A2, 0x00A3, 0x00A7, 0x2022, 0x00B6, 0x00DF,  // † ° ¢ £ § • ¶ ß
    0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8,  // ® © ™ ´ ¨ ≠ Æ Ø
    0x221E, 0x00B1, 0x2264, 0x2265, 0x00A5, 0x00B5, 0x2202, 0x2211,  // ∞ ± ≤ ≥ ¥ µ ∂ ∑
    0x220F, 0x03C0, 0x222B, 0x00AA, 0x00BA, 0x03A9, 0x00E6, 0x00F8,  // ∏ π ∫ ª º Ω æ ø
    0x00BF, 0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB,  // ¿ ¡ ¬ √ ƒ ≈ ∆ «
    0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5, 0x0152, 0x0153,  // » … . À Ã Õ Œ œ
    0x2013, 0x2014, 0x201C, 0x201D, 0x2018, 0x2019, 0x00F7, 0x25CA,  // – — “ ” ‘ ’ ÷ ◊
    0x00FF, 0x0178, 0x2044, 0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02,  // ÿ Ÿ ⁄ € ‹ › ﬁ ﬂ
    0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1,  // ‡ · ‚ „ ‰ Â Ê Á
    0x00CB, 0x00C8, 0x00CD, 0x00CE, 0x00CF, 0x00CC, 0x00D3, 0x00D4,  // Ë È Í Î Ï Ì Ó Ô
    0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9, 0x0131, 0x02C6, 0x02DC,  // . Ò Ú Û Ù ı ˆ ˜
    0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7,  // ¯ ˘ ˙ ˚ ¸ ˝ ˛ ˇ
};
// clang-format on

struct Place {
  char16_t character;
  std::uint8_t byte;
};

constexpr bool isAhead(const Place& place, char32_t character) {
  return place.character < character;
}

/// The same the other way round, in the order of the characters.
constexpr auto placesOfCharacters = [] {
  std::array<Place, upperHalf.size()> places{};
  for (std::size_t i = 0; i < places.size(); ++i)
    places[i] = {upperHalf[i], static_cast<std::uint8_t>(0x80 + i)};
  std::sort(places.begin(), places.end(),
            [](const Place& a, const Place& b) { return a.character < b.character; });
  return places;
}();

/// A combining character, letters of ASCII and what it makes of them.
struct Accent {
  char32_t mark;
  std::string_view letters;
  std::u16string_view composed;
};
constexpr Accent accents[] = {
    {0x0300, "AEIOUaeiou", u"ÀÈÌÒÙàèìòù"},
    {0x0301, "AEIOUaeiou", u"ÁÉÍÓÚáéíóú"},
    {0x0302, "AEIOUaeiou", u"ÂÊÎÔÛâêîôû"},
    {0x0303, "ANOano", u"ÃÑÕãñõ"},
    {0x0308, "AEIOUYaeiouy", u"ÄËÏÖÜŸäëïöüÿ"},
    {0x030A, "Aa", u"Åå"},
    {0x0327, "Cc", u"Çç"},
};

std::optional<char32_t> composedOf(char letter, char32_t mark) {
  for (const Accent& accent : accents) {
    if (accent.mark != mark) continue;
    const std::size_t at = accent.letters.find(letter);
    if (at != std::string_view::npos) return accent.composed[at];
  }
  return std::nullopt;
}

}  // namespace

std::string decodeMacRoman(ByteView bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes)
    appendUtf8(text, byte < 0x80 ? char16_t{byte} : upperHalf[byte - 0x80U]);
  return text;
}

std::optional<std::uint8_t> macRomanByte(char32_t character) {
  if (character < 0x80) return static_cast<std::uint8_t>(character);
  const auto* const place =
      std::lower_bound(placesOfCharacters.begin(), placesOfCharacters.end(), character, isAhead);
  if (place == placesOfCharacters.end() || place->character != character) return std::nullopt;
  return place->byte;
}

std::string composedForMacRoman(std::string_view text) {
  std::string composed;
  while (!text.empty()) {
    const std::size_t length = std::max<std::size_t>(utf8SequenceLength(text), 1);
    const bool canBeMark = length == 2 && !composed.empty();
    const auto character =
        canBeMark ? composedOf(composed.back(), utf8Scalar(text.substr(0, length))) : std::nullopt;
    if (character) {
      composed.pop_back();
      appendUtf8(composed, *character);
    } else {
      composed += text.substr(0, length);
    }
    text.remove_prefix(length);
  }
  return composed;
}

std::string encodeMacRoman(std::string_view text) {
  std::string bytes;
  while (!text.empty()) {
    const std::size_t length = utf8SequenceLength(text);
    const auto byte = length == 0 ? std::nullopt : macRomanByte(utf8Scalar(text.substr(0, length)));
    bytes += static_cast<char>(byte.value_or('?'));
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return bytes;
}

}  // namespace corvana
