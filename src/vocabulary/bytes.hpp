// Bytes of audio files: a bounded view with integer fields in either byte order, and a growable
// buffer to assemble them in.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace corvana {

/// Which byte of a number comes first.
enum class ByteOrder {
  little,  ///< WAV
  big,     ///< AIFF
};

/// Bytes that somebody else owns.
using ByteView = std::span<const std::uint8_t>;
/// Bytes of one's own.
using ByteBuffer = std::vector<std::uint8_t>;

/// Integer fields at byte offsets of a view. A field that does not lie wholly inside the view
/// reads as 0: parsers compare sizes before they read, this only keeps a mistake harmless.
class Fields {
 public:
  constexpr Fields(ByteView bytes, ByteOrder order) : bytes_(bytes), order_(order) {}

  constexpr std::uint8_t u8(std::size_t offset) const { return read<std::uint8_t>(offset); }
  constexpr std::uint16_t u16(std::size_t offset) const { return read<std::uint16_t>(offset); }
  constexpr std::uint32_t u32(std::size_t offset) const { return read<std::uint32_t>(offset); }
  constexpr std::uint64_t u64(std::size_t offset) const { return read<std::uint64_t>(offset); }
  constexpr std::int8_t i8(std::size_t offset) const {
    return static_cast<std::int8_t>(u8(offset));
  }
  constexpr std::int16_t i16(std::size_t offset) const {
    return static_cast<std::int16_t>(u16(offset));
  }
  /// Four characters, a chunk ID for example; empty where the view is too short.
  std::string_view id(std::size_t offset) const {
    if (!holds(offset, 4)) return {};
    return {reinterpret_cast<const char*>(bytes_.data()) + offset, 4};
  }

 private:
  constexpr bool holds(std::size_t offset, std::size_t size) const {
    return offset <= bytes_.size() && bytes_.size() - offset >= size;
  }

  template <std::unsigned_integral Value>
  constexpr Value read(std::size_t offset) const {
    if (!holds(offset, sizeof(Value))) return 0;
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < sizeof(Value); ++i) {
      const std::size_t from = order_ == ByteOrder::big ? i : sizeof(Value) - 1 - i;
      value = value << 8 | bytes_[offset + from];
    }
    return static_cast<Value>(value);
  }

  ByteView bytes_;
  ByteOrder order_;
};

/// How many bytes a number of this many bits takes.
constexpr std::uint32_t bytesFor(std::uint32_t bits) {
  return (bits + 7) / 8;
}

/// Appends the bytes of `value`; its type decides how many.
template <std::unsigned_integral Value>
void appendInteger(ByteBuffer& buffer, Value value, ByteOrder order) {
  for (std::size_t i = 0; i < sizeof(Value); ++i) {
    const std::size_t from = order == ByteOrder::little ? i : sizeof(Value) - 1 - i;
    buffer.push_back(static_cast<std::uint8_t>(std::uint64_t{value} >> (8 * from)));
  }
}

/// Appends them as they are.
inline void appendBytes(ByteBuffer& buffer, ByteView bytes) {
  buffer.insert(buffer.end(), bytes.begin(), bytes.end());
}

/// Appends the four ASCII characters of a chunk ID.
inline void appendFourCC(ByteBuffer& buffer, std::string_view id) {
  for (const char character : id)
    buffer.push_back(static_cast<std::uint8_t>(character));
}

}  // namespace corvana
