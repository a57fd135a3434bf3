#include "verify/layout_proof.hpp"

#include <algorithm>
#include <map>

#include "vocabulary/screen_text.hpp"

namespace corvana {
namespace {

/// Where a chunk says how large it is.
std::uint64_t sizeFieldOf(const Chunk& chunk) {
  return chunk.bodyOffset - 4;
}

std::int64_t number(std::uint64_t value) {
  return static_cast<std::int64_t>(value);
}

void addChunkSize(const Chunk& chunk, std::uint64_t found, std::uint64_t expected,
                  Differences& differences) {
  differences.add({.kind = DifferenceKind::chunkSize,
                   .chunk = readableLine(chunk.id),
                   .found = number(found),
                   .expected = number(expected),
                   .offset = sizeFieldOf(chunk)});
}

}  // namespace

std::string hexText(ByteView bytes) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text += digits[byte >> 4];
    text += digits[byte & 0xF];
  }
  return text;
}

Chunk lastChunk(ByteView file, ByteOrder order, std::string_view id) {
  Chunk last{};
  walkChunks(file, order, [&](const Chunk& chunk) {
    if (chunk.id == id) last = chunk;
  });
  return last;
}

void compareLayout(ByteView file, ByteOrder order, std::initializer_list<std::string_view> known,
                   Differences& differences) {
  const Fields fields(file, order);
  if (fields.u32(4) != file.size() - chunkHeaderSize)
    differences.add({.kind = DifferenceKind::containerSize,
                     .found = std::int64_t{fields.u32(4)},
                     .expected = number(file.size() - chunkHeaderSize),
                     .offset = 4});

  const auto isKnown = [&](std::string_view id) {
    return std::find(known.begin(), known.end(), id) != known.end();
  };
  std::map<std::string_view, int> seen;
  std::uint64_t end = fileHeaderSize;
  bool hasLostItsWay = false;
  walkChunks(file, order, [&](const Chunk& chunk) {
    const std::uint64_t bodyEnd = chunk.bodyOffset + std::uint64_t{chunk.declaredSize};
    end = bodyEnd + chunk.declaredSize % 2;
    // Behind a pad byte that is missing, chunks are read where none are.
    if (hasLostItsWay) return;
    if (isKnown(chunk.id) && ++seen[chunk.id] == 2)
      differences.add({.kind = DifferenceKind::chunkTwice, .chunk = readableLine(chunk.id)});
    if (chunk.declaredSize > chunk.body.size())
      return addChunkSize(chunk, chunk.declaredSize, chunk.body.size(), differences);
    if (chunk.declaredSize % 2 == 0) return;
    const auto pad = static_cast<std::size_t>(bodyEnd);
    hasLostItsWay = pad == file.size() || isKnown(fields.id(pad));
    if (hasLostItsWay) {
      differences.add(
          {.kind = DifferenceKind::paddingMissing, .chunk = readableLine(chunk.id), .offset = pad});
    } else if (file[pad] != 0) {
      differences.add({.kind = DifferenceKind::padding,
                       .chunk = readableLine(chunk.id),
                       .found = std::int64_t{file[pad]},
                       .expected = std::int64_t{0},
                       .offset = pad});
    }
  });
  if (end < file.size())
    differences.add(
        {.kind = DifferenceKind::strayBytes, .found = number(file.size() - end), .offset = end});
}

void compareChunkOrder(ByteView file, ByteOrder order,
                       const std::vector<std::string_view>& promised, Differences& differences) {
  constexpr std::size_t maxShown = 64;
  std::string found;
  std::size_t count = 0;
  bool isPromised = true;
  walkChunks(file, order, [&](const Chunk& chunk) {
    isPromised = isPromised && count < promised.size() && chunk.id == promised[count];
    if (++count <= maxShown) found += std::string(chunk.id) + " ";
  });
  if (isPromised && count == promised.size()) return;
  std::string expected;
  for (const std::string_view id : promised)
    expected += std::string(id) + " ";
  differences.add({.kind = DifferenceKind::chunkOrder,
                   .found = readableLine(found),
                   .expected = std::move(expected)});
}

void compareChunkSize(const Chunk& chunk, std::uint64_t promised, Differences& differences) {
  if (chunk.body.size() != promised) addChunkSize(chunk, chunk.body.size(), promised, differences);
}

void FieldProof::bytes(std::size_t offset, ByteView promised) {
  if (offset > chunk_.body.size()) return;
  const ByteView found =
      chunk_.body.subspan(offset, std::min(promised.size(), chunk_.body.size() - offset));
  if (std::equal(found.begin(), found.end(), promised.begin(), promised.end())) return;
  differences_.add({.kind = DifferenceKind::chunkField,
                    .chunk = readableLine(chunk_.id),
                    .found = hexText(found),
                    .expected = hexText(promised),
                    .offset = chunk_.bodyOffset + offset});
}

void FieldProof::compare(std::size_t offset, std::int64_t found, std::int64_t promised) {
  if (found == promised) return;
  differences_.add({.kind = DifferenceKind::chunkField,
                    .chunk = readableLine(chunk_.id),
                    .found = found,
                    .expected = promised,
                    .offset = chunk_.bodyOffset + offset});
}

}  // namespace corvana
