// Searching and trimming of UTF-16 text, as the version file needs it.
//
// "Without regard to case" holds for the letters up to U+00C6, the largest code point of
// unscrambled text, and their small forms. Every other character stands for itself.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace corvana {

/// 1-based position, in UTF-16 code units, of the first match of `wanted` at or after position
/// `start`, without regard to case; a start below 1 means 1. 0 when there is none, or when
/// `wanted` is empty.
std::int64_t findPosition(std::u16string_view text, std::u16string_view wanted, std::int64_t start);

/// Whether `text` begins with `prefix`, without regard to case.
bool beginsWith(std::u16string_view text, std::u16string_view prefix);

/// Puts `replacement` in place of every occurrence of `wanted`, found from left to right without
/// regard to case. A result of more than `maxSize` code units is given up: it is empty.
std::u16string replaceAll(std::u16string_view text, std::u16string_view wanted,
                          std::u16string_view replacement,
                          std::size_t maxSize = std::u16string_view::npos);

/// A tab or a space of any width; no line break.
bool isWhiteSpace(char16_t character);

/// `text` without white space and line breaks at both ends.
std::u16string_view trimmed(std::u16string_view text);

}  // namespace corvana
