#include "vocabulary/unicode.hpp"

namespace corvana {
namespace {

constexpr char32_t replacementCharacter = 0xFFFD;

bool isHighSurrogate(char16_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isLowSurrogate(char16_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

}  // namespace

std::size_t utf8SequenceLength(std::string_view text) {
  const auto byte = [&](std::size_t index) {
    return index < text.size() ? static_cast<unsigned char>(text[index]) : 0U;
  };
  const auto continues = [&](std::size_t index, unsigned low = 0x80, unsigned high = 0xBF) {
    return byte(index) >= low && byte(index) <= high;
  };
  if (text.empty()) return 0;
  const unsigned first = byte(0);
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first <= 0xDF) return continues(1) ? 2 : 0;
  if (first >= 0xE0 && first <= 0xEF) {
    const unsigned low = first == 0xE0 ? 0xA0 : 0x80;
    const unsigned high = first == 0xED ? 0x9F : 0xBF;
    return continues(1, low, high) && continues(2) ? 3 : 0;
  }
  if (first >= 0xF0 && first <= 0xF4) {
    const unsigned low = first == 0xF0 ? 0x90 : 0x80;
    const unsigned high = first == 0xF4 ? 0x8F : 0xBF;
    return continues(1, low, high) && continues(2) && continues(3) ? 4 : 0;
  }
  return 0;
}

char32_t utf8Scalar(std::string_view sequence) {
  const auto first = static_cast<unsigned char>(sequence[0]);
  if (sequence.size() == 1) return first;
  char32_t scalar = first & (0xFFU >> (sequence.size() + 1));
  for (const char byte : sequence.substr(1))
    scalar = scalar << 6U | (static_cast<unsigned char>(byte) & 0x3FU);
  return scalar;
}

bool isUtf8(std::string_view text) {
  while (const std::size_t length = utf8SequenceLength(text))
    text.remove_prefix(length);
  return text.empty();
}

void appendUtf8(std::string& text, char32_t scalar) {
  const auto append = [&](char32_t byte) { text += static_cast<char>(byte); };
  if (scalar < 0x80) {
    append(scalar);
    return;
  }
  if (scalar < 0x800) {
    append(0xC0 | scalar >> 6U);
  } else {
    if (scalar < 0x10000) {
      append(0xE0 | scalar >> 12U);
    } else {
      append(0xF0 | scalar >> 18U);
      append(0x80 | (scalar >> 12U & 0x3FU));
    }
    append(0x80 | (scalar >> 6U & 0x3FU));
  }
  append(0x80 | (scalar & 0x3FU));
}

std::u16string utf16FromUtf8(std::string_view text) {
  std::u16string units;
  units.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = utf8SequenceLength(text);
    const char32_t scalar = length == 0 ? replacementCharacter : utf8Scalar(text.substr(0, length));
    if (scalar < 0x10000) {
      units += static_cast<char16_t>(scalar);
    } else {
      units += static_cast<char16_t>(0xD7C0 + (scalar >> 10U));
      units += static_cast<char16_t>(0xDC00 | (scalar & 0x3FFU));
    }
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return units;
}

std::string utf8FromUtf16(std::u16string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t scalar = text[i];
    if (isHighSurrogate(text[i]) && i + 1 < text.size() && isLowSurrogate(text[i + 1])) {
      scalar = 0x10000 + ((scalar & 0x3FFU) << 10U) + (text[++i] & 0x3FFU);
    } else if (isHighSurrogate(text[i]) || isLowSurrogate(text[i])) {
      scalar = replacementCharacter;
    }
    appendUtf8(bytes, scalar);
  }
  return bytes;
}

}  // namespace corvana
