// Conversions between UTF-8, which files and terminals hold, and UTF-16.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace corvana {

/// Length in bytes of the well-formed UTF-8 sequence at the start of `text`, 0 when there is none.
std::size_t utf8SequenceLength(std::string_view text);

/// The scalar value of one well-formed sequence.
char32_t utf8Scalar(std::string_view sequence);

/// Whether all of `text` is well-formed UTF-8.
bool isUtf8(std::string_view text);

/// Appends one Unicode scalar value.
void appendUtf8(std::string& text, char32_t scalar);

/// Every byte that belongs to no well-formed sequence becomes U+FFFD. A byte-order mark is kept.
std::u16string utf16FromUtf8(std::string_view text);

/// Every unpaired surrogate becomes U+FFFD.
std::string utf8FromUtf16(std::u16string_view text);

}  // namespace corvana
