#include "convert/capsule.hpp"

#include <string_view>

#include "convert/crc64.hpp"
#include "vocabulary/chunks.hpp"

namespace corvana {
namespace {

constexpr std::uint32_t version = 1;
constexpr std::string_view signature = "Crvn";  // of the program, in chunks for applications
constexpr std::string_view wavChunk = "crvn";
constexpr std::string_view aiffChunk = "APPL";
constexpr std::uint32_t namesFlag = 1;
constexpr std::uint32_t textsFlag = 2;
constexpr std::size_t headSize = 40;
constexpr std::size_t sumSize = 8;
constexpr ByteOrder order = ByteOrder::little;  // in both formats

void appendHead(ByteBuffer& bytes, const Capsule& capsule) {
  appendInteger(bytes, version, order);
  appendInteger(bytes, capsule.originalSum, order);
  appendInteger(bytes, capsule.outputSum, order);
  appendInteger(bytes, capsule.frameCount, order);
  appendInteger(bytes, capsule.channels, order);
  const SampleConversion& conversion = capsule.conversion;
  for (const std::uint32_t value :
       {conversion.sourceWidth, conversion.outputWidth, std::uint32_t{conversion.reverseBytes},
        std::uint32_t{conversion.turnSign},
        (capsule.keepsNames ? namesFlag : 0U) | (capsule.keepsTexts ? textsFlag : 0U), 0U})
    bytes.push_back(static_cast<std::uint8_t>(value));
  appendInteger(bytes, static_cast<std::uint32_t>(capsule.prefix.size()), order);
  appendInteger(bytes, static_cast<std::uint32_t>(capsule.suffix.size()), order);
}

std::uint64_t sumOf(ByteView bytes) {
  Crc64 sum;
  sum.add(bytes);
  return sum.value();
}

/// Whether there are samples that are converted so.
bool canBe(const SampleConversion& conversion) {
  const auto [source, output, reverse, turn] = conversion;
  if (source == 8) return output == 8;
  return source >= 1 && source <= 4 && output >= 1 && output <= source;
}

std::optional<Capsule> read(ByteView body) {
  if (body.size() < headSize + sumSize) return std::nullopt;
  const ByteView summed = body.first(body.size() - sumSize);
  const Fields fields(body, order);
  if (fields.u32(0) != version || fields.u64(summed.size()) != sumOf(summed)) return std::nullopt;
  Capsule capsule{
      .originalSum = fields.u64(4),
      .outputSum = fields.u64(12),
      .frameCount = fields.u32(20),
      .channels = fields.u16(24),
      .conversion = {fields.u8(26), fields.u8(27), fields.u8(28) != 0, fields.u8(29) != 0},
      .keepsNames = (fields.u8(30) & namesFlag) != 0,
      .keepsTexts = (fields.u8(30) & textsFlag) != 0};
  const std::uint64_t prefixSize = fields.u32(32);
  const std::uint64_t suffixSize = fields.u32(36);
  const ByteView rest = summed.subspan(headSize);
  if (prefixSize + suffixSize > rest.size()) return std::nullopt;
  capsule.prefix = rest.first(static_cast<std::size_t>(prefixSize));
  capsule.suffix =
      rest.subspan(static_cast<std::size_t>(prefixSize), static_cast<std::size_t>(suffixSize));
  capsule.samples = rest.subspan(static_cast<std::size_t>(prefixSize + suffixSize));
  const std::uint64_t sampleBytes = capsule.hasLostBits() ? capsule.sampleBytes() : 0;
  if (capsule.channels == 0 || !canBe(capsule.conversion) || capsule.samples.size() != sampleBytes)
    return std::nullopt;
  return capsule;
}

}  // namespace

void appendCapsule(ByteBuffer& trailer, const Capsule& capsule, bool isWAV) {
  const std::string_view mark = isWAV ? std::string_view() : signature;
  const std::size_t size = mark.size() + headSize + capsule.prefix.size() + capsule.suffix.size() +
                           capsule.samples.size() + sumSize;
  trailer.reserve(trailer.size() + chunkHeaderSize + size + 1);
  appendFourCC(trailer, isWAV ? wavChunk : aiffChunk);
  appendInteger(trailer, static_cast<std::uint32_t>(size),
                isWAV ? ByteOrder::little : ByteOrder::big);
  trailer.insert(trailer.end(), mark.begin(), mark.end());
  const std::size_t start = trailer.size();
  appendHead(trailer, capsule);
  for (const ByteView part : {capsule.prefix, capsule.suffix, capsule.samples})
    appendBytes(trailer, part);
  appendInteger(trailer, sumOf(ByteView(trailer).subspan(start)), order);
  if (size % 2 != 0) trailer.push_back(0);
}

std::optional<Capsule> findCapsule(ByteView file, bool isWAV,
                                   std::optional<std::uint64_t>& offset) {
  ByteView found;
  walkChunks(file, isWAV ? ByteOrder::little : ByteOrder::big, [&](const Chunk& chunk) {
    const bool isSigned = Fields(chunk.body, order).id(0) == signature;
    if (isWAV ? chunk.id != wavChunk : chunk.id != aiffChunk || !isSigned) return;
    found = isWAV ? chunk.body : chunk.body.subspan(signature.size());
    offset = chunk.bodyOffset;
  });
  return offset ? read(found) : std::nullopt;
}

}  // namespace corvana
