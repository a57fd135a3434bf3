// Every chunk of a WAV or AIFF file, known or not, damaged or not.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "vocabulary/chunks.hpp"

namespace corvana {

/// Most entries that a list of a hostile file keeps; all markers that AIFF can number fit.
inline constexpr std::size_t maxListed = 65'536;

/// What holds the chunks of a file, told by its first twelve bytes.
enum class Container {
  unknown,
  wav,
  rifx,  ///< WAV in big-endian order
  rf64,  ///< WAV above 4 GB (RF64 or BW64)
  riff,  ///< RIFF of another form type than WAVE
  aiff,
  aifc,
  form,  ///< FORM of another form type than AIFF and AIFC
};

/// What stands behind a chunk's body.
enum class Padding {
  none,     ///< the size is even
  zero,     ///< as it should be
  other,    ///< a byte that is not zero
  missing,  ///< the next chunk, or the end of the file, follows at once
};

/// One chunk as found in a file.
struct ChunkEntry {
  std::string id;                   ///< the four bytes
  std::uint64_t offset = 0;         ///< of its header, in bytes from the start of the file
  std::uint64_t declaredSize = 0;   ///< of its body, in bytes
  std::uint64_t presentSize = 0;    ///< less where the file ends inside
  Padding padding = Padding::none;  ///< behind its body
};

/// The chunks of a file in their order.
struct ChunkList {
  Container container = Container::unknown;  ///< of the first twelve bytes
  std::string formType;                      ///< the four bytes behind the container's size
  std::uint64_t declaredEnd = 0;             ///< where the container says that it ends; bytes
  std::uint64_t end = 0;                     ///< where the last chunk ends, pad byte included
  std::uint64_t count = 0;                   ///< of all chunks
  std::vector<ChunkEntry> chunks;            ///< the first maxListed
};

/// Of a file's first bytes.
Container containerOf(ByteView file);

/// The byte order of the fields.
ByteOrder byteOrderOf(Container container);

/// Lists the chunks, and hands each with its body to `visit`, those beyond the list included. Finds
/// the chunks behind one whose pad byte is missing, which readers do not. Never fails.
ChunkList listChunks(ByteView file,
                     const std::function<void(const ChunkEntry&, ByteView body)>& visit);

}  // namespace corvana
