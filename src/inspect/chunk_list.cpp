#include "inspect/chunk_list.hpp"

#include <algorithm>
#include <limits>

namespace corvana {
namespace {

constexpr std::uint32_t sizeElsewhere = std::numeric_limits<std::uint32_t>::max();

bool isPlausibleID(std::string_view id) {
  return id.size() == 4 && id[0] != ' ' &&
         std::all_of(id.begin(), id.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

/// How much speaks for a chunk at `position`: its ID, its size, and what stands behind it.
int credibilityOfChunk(ByteView file, ByteOrder order, std::uint64_t position) {
  const auto chunk = chunkAt(file, order, position);
  if (!chunk || !isPlausibleID(chunk->id)) return 0;
  if (chunk->body.size() < chunk->declaredSize) return 1;
  const std::uint64_t end = chunk->bodyOffset + chunk->body.size();
  if (end + end % 2 >= file.size()) return 3;
  const auto isChunk = [&](std::uint64_t start) {
    const auto next = chunkAt(file, order, start);
    return next && isPlausibleID(next->id);
  };
  return isChunk(end) || isChunk(end + 1) ? 3 : 2;
}

/// Whether a chunk starts at `position` rather than one byte behind it, where it should.
bool followsUnpadded(ByteView file, ByteOrder order, std::uint64_t position) {
  return credibilityOfChunk(file, order, position) > credibilityOfChunk(file, order, position + 1);
}

Padding paddingBehind(ByteView file, ByteOrder order, std::uint64_t bodyEnd) {
  if (bodyEnd >= file.size()) return Padding::missing;
  if (file[static_cast<std::size_t>(bodyEnd)] == 0) return Padding::zero;
  return followsUnpadded(file, order, bodyEnd) ? Padding::missing : Padding::other;
}

}  // namespace

Container containerOf(ByteView file) {
  const Fields header(file, ByteOrder::big);
  const std::string_view form = header.id(8);
  if (form.empty()) return Container::unknown;
  if (header.id(0) == "RIFF") return form == "WAVE" ? Container::wav : Container::riff;
  if (header.id(0) == "RIFX") return form == "WAVE" ? Container::rifx : Container::unknown;
  if (header.id(0) == "RF64" || header.id(0) == "BW64")
    return form == "WAVE" ? Container::rf64 : Container::unknown;
  if (header.id(0) != "FORM") return Container::unknown;
  if (form == "AIFF") return Container::aiff;
  return form == "AIFC" ? Container::aifc : Container::form;
}

ByteOrder byteOrderOf(Container container) {
  switch (container) {
    case Container::wav:
    case Container::rf64:
    case Container::riff:
      return ByteOrder::little;
    default:
      return ByteOrder::big;
  }
}

ChunkList listChunks(ByteView file,
                     const std::function<void(const ChunkEntry&, ByteView body)>& visit) {
  ChunkList list;
  list.container = containerOf(file);
  if (list.container == Container::unknown) return list;
  const ByteOrder order = byteOrderOf(list.container);
  const Fields header(file, order);
  list.formType = header.id(8);
  list.declaredEnd = chunkHeaderSize + std::uint64_t{header.u32(4)};
  std::uint64_t dataSize = sizeElsewhere;  // of the data chunk of an RF64 file

  std::uint64_t position = fileHeaderSize;
  while (const auto chunk = chunkAt(file, order, position)) {
    ChunkEntry entry{.id = std::string(chunk->id),
                     .offset = position,
                     .declaredSize = chunk->declaredSize,
                     .presentSize = chunk->body.size()};
    ByteView body = chunk->body;
    if (list.container == Container::rf64) {
      const Fields fields(body, order);
      if (chunk->id == "ds64") {
        if (header.u32(4) == sizeElsewhere) list.declaredEnd = chunkHeaderSize + fields.u64(0);
        dataSize = fields.u64(8);
      } else if (chunk->id == "data" && chunk->declaredSize == sizeElsewhere) {
        entry.declaredSize = dataSize;
        const std::uint64_t left = file.size() - chunk->bodyOffset;
        entry.presentSize = std::min(dataSize, left);
        body = file.subspan(chunk->bodyOffset, static_cast<std::size_t>(entry.presentSize));
      }
    }
    position = chunk->bodyOffset + entry.presentSize;
    if (entry.presentSize == entry.declaredSize && entry.declaredSize % 2 != 0) {
      entry.padding = paddingBehind(file, order, position);
      if (entry.padding != Padding::missing) ++position;
    }
    ++list.count;
    visit(entry, body);
    if (list.chunks.size() < maxListed) list.chunks.push_back(std::move(entry));
  }
  list.end = std::min<std::uint64_t>(position, file.size());
  return list;
}

}  // namespace corvana
