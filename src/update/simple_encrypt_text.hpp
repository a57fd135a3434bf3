// The scrambler of the version file. It keeps the file from being read in passing; it is no
// protection.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace corvana {

/// Scrambled text holds code points below this.
inline constexpr char16_t scrambledLimit = 239;

/// Code units; a file that unscrambles to more is refused. A few bytes stand for a long phrase, so
/// the size of the scrambled text does not limit it.
inline constexpr std::size_t maxUnscrambledSize = std::size_t{2} * 1024 * 1024;

/// Scrambles (`encrypt`) or unscrambles. Text that cannot be handled gives an empty text and one
/// line on standard output; one that unscrambles to too much, no line. Any thread.
std::u16string simpleEncryptText(std::u16string_view text, bool encrypt);

/// The largest code point that may be scrambled at any position: with the largest shift it still
/// stays below `scrambledLimit`.
extern const char16_t maxScramblableCharacter;

/// Index of the first character of a plain text that scrambling and unscrambling would not bring
/// back as it is: it lies above `maxScramblableCharacter`, it belongs to a known phrase in
/// another case, or it looks like the code of one. No value: the text survives.
std::optional<std::size_t> firstUnsafeCharacter(std::u16string_view text);

}  // namespace corvana
