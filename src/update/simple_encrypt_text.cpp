#include "update/simple_encrypt_text.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>

#include "update/text_search.hpp"

namespace corvana {
namespace {

// Every installed program unscrambles with the constants that it was built with. A change here
// cuts them all off from the version file.

struct Phrase {
  std::u16string_view phrase;
  std::u16string_view code;
};

/// An address stands before the shorter one that it begins with.
constexpr std::array<Phrase, 7> phrases = {{
    {u"https://www.corvana.example/resources/downloads/", u"#$d#"},
    {u"https://www.corvana.example/resources/", u"#$r#"},
    {u"https://www.corvana.example/", u"#$w#"},
    {u"https://www.", u"#$h2#"},
    {u"https://", u"#$h1#"},
    {u"Vantor", u"#$v#"},
    {u"Corvana", u"#$c#"},
}};

/// The shift at a position is the base plus five counters, each running from 0 to its period
/// less 1. The periods are prime to each other, so the schedule repeats after 323323 characters.
/// The shift goes from 40 to 102: a line feed (10) becomes at least 50, so scrambled text has no
/// line breaks that a transfer could change; "~" (126) at most 228, below 239.
constexpr std::int32_t baseShift = 40;
constexpr std::array<std::int32_t, 5> periods = {7, 11, 13, 17, 19};

constexpr std::int32_t maxShift() {
  std::int32_t shift = baseShift;
  for (const std::int32_t period : periods)
    shift += period - 1;
  return shift;
}
static_assert('~' + maxShift() < scrambledLimit);

/// Gives the shift of one position after the other.
class ShiftSchedule {
 public:
  std::int32_t next() {
    std::int32_t shift = baseShift;
    for (std::size_t i = 0; i < periods.size(); ++i) {
      shift += counters_[i];
      counters_[i] = (counters_[i] + 1) % periods[i];
    }
    return shift;
  }

 private:
  std::array<std::int32_t, 5> counters_{};
};

bool isScalarValue(std::int32_t value) {
  return value >= 0 && value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF);
}

/// A code unit that is half of a larger character is refused like that character itself, so
/// units may be taken for characters here.
std::optional<std::u16string> shifted(std::u16string_view text, std::int32_t direction) {
  std::u16string result;
  result.reserve(text.size());
  ShiftSchedule schedule;
  for (const char16_t character : text) {
    if (character >= scrambledLimit) {
      std::puts(
          "Sorry, this text encoder / decoder is only suitable for simple text files. It is not "
          "suitable for binary files!");
      return std::nullopt;
    }
    const std::int32_t value = character + direction * schedule.next();
    if (!isScalarValue(value)) {
      std::printf("simpleEncryptText: ungültiger Zeichenwert %d\n", value);
      return std::nullopt;
    }
    result += static_cast<char16_t>(value);
  }
  return result;
}

std::u16string encrypted(std::u16string text) {
  for (const Phrase& row : phrases)
    text = replaceAll(text, row.phrase, row.code);
  return shifted(text, 1).value_or(std::u16string());
}

std::u16string decrypted(std::u16string_view text) {
  std::u16string result = shifted(text, -1).value_or(std::u16string());
  for (const Phrase& row : phrases)
    result = replaceAll(result, row.code, row.phrase, maxUnscrambledSize);
  return result;
}

}  // namespace

const char16_t maxScramblableCharacter = static_cast<char16_t>(scrambledLimit - 1 - maxShift());

std::u16string simpleEncryptText(std::u16string_view text, bool encrypt) {
  return encrypt ? encrypted(std::u16string(text)) : decrypted(text);
}

std::optional<std::size_t> firstUnsafeCharacter(std::u16string_view text) {
  const auto outside = std::find_if(text.begin(), text.end(), [](char16_t character) {
    return character > maxScramblableCharacter;
  });
  if (outside != text.end()) return static_cast<std::size_t>(outside - text.begin());
  const std::u16string back = decrypted(encrypted(std::u16string(text)));
  if (back == text) return std::nullopt;
  const auto [original, copy] = std::mismatch(text.begin(), text.end(), back.begin(), back.end());
  return static_cast<std::size_t>(original - text.begin());
}

}  // namespace corvana
