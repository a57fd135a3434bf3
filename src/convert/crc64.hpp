// The check sum of files that are to come back to the last byte: CRC-64 as in ECMA-182, reflected,
// which finds every change of up to 64 bits in a row.
#pragma once

#include <cstdint>

#include "vocabulary/bytes.hpp"

namespace corvana {

/// The sum of everything that was given to `add`, in order.
class Crc64 {
 public:
  void add(ByteView bytes);
  std::uint64_t value() const { return ~state_; }

 private:
  std::uint64_t state_ = ~std::uint64_t{0};
};

}  // namespace corvana
