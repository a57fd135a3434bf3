// Chunks, the framing that WAV and AIFF share: a four-character ID, a 32-bit body size, the
// body, and a zero pad byte after a body of odd size that the size does not count.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>

#include "vocabulary/bytes.hpp"

namespace corvana {

inline constexpr std::size_t fileHeaderSize = 12;  ///< container ID, size, form type
inline constexpr std::size_t chunkHeaderSize = 8;  ///< chunk ID, body size

/// One chunk as found in a file.
struct Chunk {
  std::string_view id;         ///< the four characters
  ByteView body;               ///< the declared body, cut at the end of the file
  std::size_t bodyOffset;      ///< where the body starts, in bytes from the start of the file
  std::uint32_t declaredSize;  ///< of the body, in bytes, without the pad byte
};

/// The bytes of a file around its samples.
struct SurroundingBytes {
  ByteBuffer header;   ///< everything ahead of the first sample byte
  ByteBuffer trailer;  ///< everything behind the last one
};

/// The chunk whose header starts at `position`; absent where the file holds no whole header there.
inline std::optional<Chunk> chunkAt(ByteView file, ByteOrder order, std::uint64_t position) {
  if (position > file.size() || file.size() - position < chunkHeaderSize) return std::nullopt;
  const std::size_t bodyOffset = static_cast<std::size_t>(position) + chunkHeaderSize;
  const Fields header(file.subspan(bodyOffset - chunkHeaderSize, chunkHeaderSize), order);
  const std::uint32_t declaredSize = header.u32(4);
  const std::size_t presentSize = std::min<std::size_t>(declaredSize, file.size() - bodyOffset);
  return Chunk{header.id(0), file.subspan(bodyOffset, presentSize), bodyOffset, declaredSize};
}

/// Calls `visit(const Chunk&)` for every chunk after the file header. Bounded by the real length
/// of the file, never by the size in its header; a chunk that claims to run past the end of the
/// file is the last. `position` is where the first one starts: those inside a chunk whose body is
/// given start behind its type.
template <typename Visit>
void walkChunks(ByteView file, ByteOrder order, const Visit& visit,
                std::uint64_t position = fileHeaderSize) {
  while (const std::optional<Chunk> chunk = chunkAt(file, order, position)) {
    visit(*chunk);
    position = chunk->bodyOffset + std::uint64_t{chunk->declaredSize} + (chunk->declaredSize & 1U);
  }
}

/// Appends a complete chunk: ID, body size, body, pad byte. `body` is below 4 GiB.
inline void appendChunk(ByteBuffer& buffer, std::string_view id, ByteView body, ByteOrder order) {
  appendFourCC(buffer, id);
  appendInteger(buffer, static_cast<std::uint32_t>(body.size()), order);
  appendBytes(buffer, body);
  if (body.size() % 2 != 0) buffer.push_back(0);
}

}  // namespace corvana
