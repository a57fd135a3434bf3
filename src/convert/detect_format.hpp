// Tells a WAV file from an AIFF file by its first bytes.
#pragma once

#include "vocabulary/bytes.hpp"

namespace corvana {

/// Whether the file is AIFF (or AIFF-C) rather than WAV, which includes RIFX with `anyEncoding`;
/// `file` is its content. Fails with ConversionError unsupported when it is neither, or shorter
/// than a file header.
bool detectFormat(ByteView file, bool anyEncoding = false);

}  // namespace corvana
