// Appends the big-endian fields and chunks of an AIFF file to a byte buffer.
#pragma once

#include <cstdint>
#include <string_view>

#include "vocabulary/bytes.hpp"
#include "vocabulary/chunks.hpp"

namespace corvana {

/// For signed and unsigned fields alike.
inline void appendUInt16BE(ByteBuffer& buffer, std::uint16_t value) {
  appendInteger(buffer, value, ByteOrder::big);
}

inline void appendUInt32BE(ByteBuffer& buffer, std::uint32_t value) {
  appendInteger(buffer, value, ByteOrder::big);
}

/// A complete chunk: ID, body size, body, pad byte.
inline void appendAiffChunk(ByteBuffer& buffer, std::string_view id, ByteView body) {
  appendChunk(buffer, id, body, ByteOrder::big);
}

/// A Pascal string: a count byte, at most 255 bytes of `text`, and a zero byte when the two
/// together would be odd.
inline void appendPString(ByteBuffer& buffer, std::string_view text) {
  text = text.substr(0, 255);
  buffer.push_back(static_cast<std::uint8_t>(text.size()));
  buffer.insert(buffer.end(), text.begin(), text.end());
  if (text.size() % 2 == 0) buffer.push_back(0);
}

}  // namespace corvana
