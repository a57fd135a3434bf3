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
constexpr std::int64_t noKey = -1;
constexpr std::uint32_t namesFlag = 1;
constexpr std::uint32_t textsFlag = 2;
constexpr std::size_t headSize = 68;
constexpr std::size_t sumSize = 8;
constexpr ByteOrder order = ByteOrder::little;  // in both formats

void appendNumber(ByteBuffer& bytes, std::int64_t number) {
  appendInteger(bytes, static_cast<std::uint32_t>(number), order);
}

ByteBuffer headOf(const Capsule& capsule) {
  ByteBuffer head;
  appendInteger(head, version, order);
  appendInteger(head, capsule.originalSum, order);
  appendInteger(head, capsule.outputSum, order);
  appendInteger(head, capsule.frameCount, order);
  appendInteger(head, capsule.channels, order);
  const SampleConversion& conversion = capsule.conversion;
  const Summary& summary = capsule.summary;
  for (const std::uint32_t value :
       {conversion.sourceWidth, conversion.outputWidth, std::uint32_t{conversion.reverseBytes},
        std::uint32_t{conversion.turnSign}, static_cast<std::uint32_t>(summary.encoding),
        (capsule.keepsNames ? namesFlag : 0U) | (capsule.keepsTexts ? textsFlag : 0U)})
    head.push_back(static_cast<std::uint8_t>(value));
  appendNumber(head, summary.bits);
  appendNumber(head, summary.sampleRate);
  appendNumber(head, summary.rootKey.value_or(noKey));
  appendNumber(head, summary.fineTune);
  appendNumber(head, summary.loopCount);
  appendNumber(head, summary.markerCount);
  appendNumber(head, summary.cuePointCount);
  appendNumber(head, static_cast<std::int64_t>(capsule.prefix.size()));
  appendNumber(head, static_cast<std::int64_t>(capsule.suffix.size()));
  return head;
}

std::uint64_t sumOf(ByteView bytes) {
  Crc64 sum;
  sum.add(bytes);
  return sum.value();
}

std::optional<SampleEncoding> encodingOf(std::uint8_t number) {
  for (const SampleEncoding encoding : {SampleEncoding::integer, SampleEncoding::floatingPoint,
                                        SampleEncoding::aLaw, SampleEncoding::muLaw})
    if (static_cast<std::uint8_t>(encoding) == number) return encoding;
  return std::nullopt;
}

/// Whether there are samples that are converted so.
bool canBe(const SampleConversion& conversion) {
  const auto [source, output, reverse, turn] = conversion;
  if (source == 8) return output == 8;
  return source >= 1 && source <= 4 && output >= 1 && output <= source;
}

/// Signed where it was put down as such.
std::int64_t signedNumber(const Fields& fields, std::size_t offset) {
  return static_cast<std::int32_t>(fields.u32(offset));
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
      .keepsNames = (fields.u8(31) & namesFlag) != 0,
      .keepsTexts = (fields.u8(31) & textsFlag) != 0,
      .summary = {.bits = signedNumber(fields, 32),
                  .channels = fields.u16(24),
                  .sampleRate = fields.u32(36),
                  .fineTune = signedNumber(fields, 44),
                  .loopCount = fields.u32(48),
                  .markerCount = fields.u32(52),
                  .cuePointCount = fields.u32(56)}};
  const std::optional<SampleEncoding> encoding = encodingOf(fields.u8(30));
  if (!encoding) return std::nullopt;
  capsule.summary.encoding = *encoding;
  if (const std::int64_t key = signedNumber(fields, 40); key != noKey)
    capsule.summary.rootKey = key;
  const std::uint64_t prefixSize = fields.u32(60);
  const std::uint64_t suffixSize = fields.u32(64);
  const ByteView rest = summed.subspan(headSize);
  if (prefixSize + suffixSize > rest.size()) return std::nullopt;
  capsule.prefix = rest.first(static_cast<std::size_t>(prefixSize));
  capsule.suffix =
      rest.subspan(static_cast<std::size_t>(prefixSize), static_cast<std::size_t>(suffixSize));
  capsule.samples = rest.subspan(static_cast<std::size_t>(prefixSize + suffixSize));
  const std::uint64_t sampleBytes = std::uint64_t{capsule.frameCount} * capsule.channels *
                                    (capsule.hasLostBits() ? capsule.conversion.sourceWidth : 0);
  if (capsule.channels == 0 || !canBe(capsule.conversion) || capsule.samples.size() != sampleBytes)
    return std::nullopt;
  return capsule;
}

}  // namespace

void appendCapsule(ByteBuffer& trailer, const Capsule& capsule, bool isWAV) {
  ByteBuffer content = headOf(capsule);
  for (const ByteView part : {capsule.prefix, capsule.suffix, capsule.samples})
    appendBytes(content, part);
  appendInteger(content, sumOf(content), order);
  if (isWAV) return appendChunk(trailer, wavChunk, content, ByteOrder::little);
  content.insert(content.begin(), signature.begin(), signature.end());
  appendChunk(trailer, aiffChunk, content, ByteOrder::big);
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
