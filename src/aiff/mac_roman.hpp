// Mac OS Roman, the character set of AIFF marker names.
#pragma once

#include <string>

#include "vocabulary/bytes.hpp"

namespace corvana {

/// The text as UTF-8. Every byte has a character, so this never fails.
std::string decodeMacRoman(ByteView bytes);

}  // namespace corvana
