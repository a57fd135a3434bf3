#include "aiff/extended80.hpp"

#include <bit>
#include <cmath>

#include "aiff/big_endian.hpp"

namespace corvana {
namespace {

constexpr int bias = 16383;
constexpr int mantissaBits = 63;  // below the integer bit

}  // namespace

double decodeExtended80(ByteView bytes) {
  const Fields fields(bytes, ByteOrder::big);
  const int exponent = fields.u16(0) & 0x7FFF;
  const std::uint64_t mantissa = fields.u64(2);
  if (exponent == 0 && mantissa == 0) return 0.0;
  return static_cast<double>(mantissa) * std::ldexp(1.0, exponent - bias - mantissaBits);
}

void appendExtended80(ByteBuffer& buffer, std::uint32_t number) {
  if (number == 0) {
    buffer.insert(buffer.end(), extended80Size, 0);
    return;
  }
  const int shift = std::countl_zero(std::uint64_t{number});
  const std::uint64_t mantissa = std::uint64_t{number} << shift;
  appendUInt16BE(buffer, static_cast<std::uint16_t>(bias + mantissaBits - shift));
  appendUInt32BE(buffer, static_cast<std::uint32_t>(mantissa >> 32));
  appendUInt32BE(buffer, static_cast<std::uint32_t>(mantissa));
}

}  // namespace corvana
