// Version texts as numbers that can be compared.
#pragma once

#include <cstdint>
#include <string_view>

namespace corvana {

/// "1.2.3" is 1002003: three digits a component behind the first. Spaces and commas separate
/// like full stops; letters, "#", "!" and line breaks do not count. A version with fewer
/// components is a smaller number ("1.2" is 1002). 0 when the text holds no usable number, or
/// one beyond 64 bits.
std::int64_t versionNumber(std::u16string_view text);

/// The decimal number at the start of `text`, behind white space and one sign. 0 when there is
/// none, or when it does not fit into 64 bits.
std::int64_t leadingInteger(std::u16string_view text);

}  // namespace corvana
