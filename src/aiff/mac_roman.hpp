// Mac OS Roman, the character set of AIFF marker names.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "vocabulary/bytes.hpp"

namespace corvana {

/// The text as UTF-8. Every byte has a character, so this never fails.
std::string decodeMacRoman(ByteView bytes);

/// The byte of a character; absent where the set lacks it.
std::optional<std::uint8_t> macRomanByte(char32_t character);

/// The text, UTF-8 as well, with one character for a letter and the accent behind it where the set
/// has that.
std::string composedForMacRoman(std::string_view text);

/// The bytes of a text in UTF-8; "?" for characters that the set lacks.
std::string encodeMacRoman(std::string_view text);

}  // namespace corvana
