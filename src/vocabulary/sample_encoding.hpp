// What the bits of a sample mean: one vocabulary for both formats, which tell it by a number or by
// four characters.
#pragma once

namespace corvana {

/// How a sample says its value.
enum class SampleEncoding {
  integer,        ///< two's complement or offset by half the range, 1 to 32 bits
  floatingPoint,  ///< IEEE 754, 32 or 64 bits
  aLaw,           ///< logarithmic, 8 bits
  muLaw,          ///< logarithmic, 8 bits
};

}  // namespace corvana
