// The texts in the chunks of a file, as UTF-8 of bounded length.
#pragma once

#include <string>

#include "vocabulary/bytes.hpp"

namespace corvana {

/// Text of a WAV file, which ends at its first zero: UTF-8, or Latin-1 where it is none.
std::string wavText(ByteView bytes);

/// Text of an AIFF file: UTF-8, or Mac OS Roman where it is none. Zeros at its end are left out.
std::string aiffText(ByteView bytes);

}  // namespace corvana
