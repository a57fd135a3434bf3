#include "aiff/aiff_reader.hpp"

#include <algorithm>
#include <string>
#include <string_view>

#include "aiff/extended80.hpp"
#include "aiff/mac_roman.hpp"
#include "vocabulary/chunks.hpp"
#include "vocabulary/errors.hpp"

namespace corvana {
namespace {

using Case = ConversionError::Case;

Fields fieldsOf(ByteView bytes) {
  return {bytes, ByteOrder::big};
}

/// Whether the form is AIFF-C.
bool checkHeader(ByteView file) {
  if (file.size() < fileHeaderSize) throw ConversionError(Case::notAIFF);
  const Fields header = fieldsOf(file);
  if (header.id(0) != "FORM") throw ConversionError(Case::notAIFF);
  if (header.id(8) != "AIFF" && header.id(8) != "AIFC") throw ConversionError(Case::notAIFF);
  return header.id(8) == "AIFC";
}

/// Whether samples of this compression type are little-endian.
bool isLittleEndian(std::string_view compressionType) {
  if (compressionType == "sowt") return true;
  for (const std::string_view bigEndian : {"NONE", "twos", "in24", "in32"})
    if (compressionType == bigEndian) return false;
  const bool isASCII = std::all_of(compressionType.begin(), compressionType.end(),
                                   [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  throw ConversionError::unsupported(UnsupportedKind::compression,
                                     {std::string(isASCII ? compressionType : "????")});
}

AiffLoop readLoop(const Fields& fields, std::size_t offset) {
  AiffLoop loop;
  loop.playMode = fields.i16(offset);
  loop.beginMarker = fields.i16(offset + 2);
  loop.endMarker = fields.i16(offset + 4);
  return loop;
}

}  // namespace

AiffInfo parseAiff(ByteView file, double rateLimit) {
  const bool isAIFC = checkHeader(file);
  AiffInfo info;
  bool hasCommon = false;
  bool hasSound = false;
  walkChunks(file, ByteOrder::big, [&](const Chunk& chunk) {
    if (chunk.id == "COMM") {
      const CommonChunk common = parseCommonChunk(chunk.body, isAIFC, rateLimit);
      info.channels = common.channels;
      info.frameCount = common.frameCount;
      info.sampleSize = common.sampleSize;
      info.sampleRate = common.sampleRate;
      info.littleEndian = common.littleEndian;
      hasCommon = true;
    } else if (chunk.id == "SSND") {
      if (chunk.body.size() < aiff_layout::soundHeaderSize) return;
      const std::uint64_t skipped =
          aiff_layout::soundHeaderSize + std::uint64_t{fieldsOf(chunk.body).u32(0)};
      info.soundOffset = static_cast<std::size_t>(
          std::min<std::uint64_t>(chunk.bodyOffset + skipped, file.size()));
      info.soundSize = chunk.body.size() - std::min<std::uint64_t>(skipped, chunk.body.size());
      hasSound = true;
    } else if (chunk.id == "MARK") {
      info.markers = parseMarkerChunk(chunk.body);
    } else if (chunk.id == "INST") {
      info.instrument = parseAiffInstrument(chunk.body);
    }
  });
  if (!hasCommon) throw ConversionError(Case::missingComm);
  if (!hasSound) throw ConversionError(Case::missingSound);
  return info;
}

CommonChunk parseCommonChunk(ByteView body, bool isAIFC, double rateLimit) {
  if (body.size() < aiff_layout::commonSize) throw ConversionError(Case::missingComm);
  const Fields fields = fieldsOf(body);
  const std::int16_t channels = fields.i16(0);
  const std::uint32_t frameCount = fields.u32(2);
  const std::int16_t sampleSize = fields.i16(6);
  const double sampleRate = decodeExtended80(body.subspan(8, extended80Size));

  bool littleEndian = false;
  if (isAIFC) {
    if (body.size() < aiff_layout::compressedCommonSize) throw ConversionError(Case::missingComm);
    littleEndian = isLittleEndian(fields.id(18));
  }
  if (channels < 1)
    throw ConversionError::unsupported(UnsupportedKind::channels, {std::int64_t{channels}});
  if (sampleSize < 1 || sampleSize > 32)
    throw ConversionError::unsupported(UnsupportedKind::bitDepth, {std::int64_t{sampleSize}});
  // Asked this way round, not-a-number is refused as well.
  if (!(sampleRate >= 1.0 && sampleRate < rateLimit))
    throw ConversionError::unsupported(UnsupportedKind::sampleRate, {sampleRate});
  return {static_cast<std::uint16_t>(channels), frameCount, static_cast<std::uint16_t>(sampleSize),
          sampleRate, littleEndian};
}

std::vector<AiffMarker> parseMarkerChunk(ByteView body) {
  if (body.size() < aiff_layout::markerCountSize) return {};
  const std::uint16_t count = fieldsOf(body).u16(0);
  ByteView rest = body.subspan(aiff_layout::markerCountSize);

  std::vector<AiffMarker> markers;
  while (markers.size() < count && rest.size() >= aiff_layout::markerHeaderSize) {
    const Fields fields = fieldsOf(rest);
    AiffMarker marker;
    marker.id = fields.i16(0);
    marker.position = fields.u32(2);
    const std::size_t nameLength = fields.u8(6);
    rest = rest.subspan(aiff_layout::markerHeaderSize);
    marker.name = decodeMacRoman(rest.first(std::min(nameLength, rest.size())));
    markers.push_back(std::move(marker));
    // Count byte and name together take an even number of bytes.
    const std::size_t paddedLength = nameLength + (nameLength % 2 == 0 ? 1 : 0);
    rest = rest.subspan(std::min(paddedLength, rest.size()));
  }
  return markers;
}

std::optional<AiffInstrument> parseAiffInstrument(ByteView body) {
  if (body.size() < aiff_layout::instrumentSize) return std::nullopt;
  const Fields fields = fieldsOf(body);
  AiffInstrument instrument;
  instrument.baseNote = fields.i8(0);
  instrument.detune = fields.i8(1);
  instrument.lowNote = fields.i8(2);
  instrument.highNote = fields.i8(3);
  instrument.lowVelocity = fields.i8(4);
  instrument.highVelocity = fields.i8(5);
  instrument.gain = fields.i16(6);
  instrument.sustainLoop = readLoop(fields, 8);
  instrument.releaseLoop = readLoop(fields, 14);
  return instrument;
}

}  // namespace corvana
