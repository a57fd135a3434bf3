// Appends the little-endian fields and chunks of a WAV file to a byte buffer.
#pragma once

#include <cstdint>
#include <string_view>

#include "vocabulary/bytes.hpp"
#include "vocabulary/chunks.hpp"

namespace corvana {

inline void appendUInt16LE(ByteBuffer& buffer, std::uint16_t value) {
  appendInteger(buffer, value, ByteOrder::little);
}

inline void appendUInt32LE(ByteBuffer& buffer, std::uint32_t value) {
  appendInteger(buffer, value, ByteOrder::little);
}

/// A complete chunk: ID, body size, body, pad byte.
inline void appendChunk(ByteBuffer& buffer, std::string_view id, ByteView body) {
  appendChunk(buffer, id, body, ByteOrder::little);
}

}  // namespace corvana
