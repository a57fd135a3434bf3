// The 80-bit extended floating-point number in which AIFF stores the sample rate: a sign bit,
// 15 bits of exponent (bias 16383) and 64 bits of mantissa with an explicit integer bit.
#pragma once

#include <cstdint>

#include "vocabulary/bytes.hpp"

namespace corvana {

inline constexpr std::size_t extended80Size = 10;  ///< bytes

/// The number at the start of `bytes`, its sign ignored. Exponents without a meaning give
/// infinity or not-a-number, never an error.
double decodeExtended80(ByteView bytes);

/// Appends a whole number exactly.
void appendExtended80(ByteBuffer& buffer, std::uint32_t number);

}  // namespace corvana
