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

/// What a compression type makes of the samples.
struct Compression {
  std::string_view type;
  bool littleEndian = false;
  /// Bits of a sample, whatever else is said of it; 0: as said.
  std::uint16_t sampleSize = 0;
  SampleEncoding encoding = SampleEncoding::integer;
};

constexpr Compression ordinary[] = {{"NONE"}, {"twos"}, {"in24"}, {"in32"}, {"sowt", true}};

constexpr Compression lessCommon[] = {
    {"raw "},
    {"42ni", true, 24},
    {"23ni", true, 32},
    {"fl32", false, 32, SampleEncoding::floatingPoint},
    {"FL32", false, 32, SampleEncoding::floatingPoint},
    {"fl64", false, 64, SampleEncoding::floatingPoint},
    {"FL64", false, 64, SampleEncoding::floatingPoint},
    {"alaw", false, 8, SampleEncoding::aLaw},
    {"ALAW", false, 8, SampleEncoding::aLaw},
    {"ulaw", false, 8, SampleEncoding::muLaw},
    {"ULAW", false, 8, SampleEncoding::muLaw},
};

Compression compressionOf(std::string_view type, bool anyEncoding) {
  for (const Compression& known : ordinary)
    if (known.type == type) return known;
  if (anyEncoding)
    for (const Compression& known : lessCommon)
      if (known.type == type) return known;
  const bool isASCII = std::all_of(type.begin(), type.end(),
                                   [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  throw ConversionError::unsupported(UnsupportedKind::compression,
                                     {std::string(isASCII ? type : "????")});
}

/// The bits of a sample, of which the COMM chunk says `declared`.
std::uint16_t sampleSizeOf(const Compression& compression, std::int16_t declared) {
  const bool isInteger = compression.encoding == SampleEncoding::integer;
  const int most = compression.type == "raw " ? 8 : 32;
  if (isInteger && (declared < 1 || declared > most))
    throw ConversionError::unsupported(UnsupportedKind::bitDepth, {std::int64_t{declared}});
  const auto size = static_cast<std::uint16_t>(declared);
  // Samples may leave the lowest bits of their bytes unused, never a whole byte.
  const bool counts = isInteger && (compression.sampleSize == 0 ||
                                    bytesFor(size) == bytesFor(compression.sampleSize));
  return counts ? size : compression.sampleSize;
}

AiffLoop readLoop(const Fields& fields, std::size_t offset) {
  AiffLoop loop;
  loop.playMode = fields.i16(offset);
  loop.beginMarker = fields.i16(offset + 2);
  loop.endMarker = fields.i16(offset + 4);
  return loop;
}

}  // namespace

AiffInfo parseAiff(ByteView file, bool anyEncoding, double rateLimit) {
  const bool isAIFC = checkHeader(file);
  AiffInfo info;
  bool hasCommon = false;
  bool hasSound = false;
  walkChunks(file, ByteOrder::big, [&](const Chunk& chunk) {
    if (chunk.id == "COMM") {
      const CommonChunk common = parseCommonChunk(chunk.body, isAIFC, anyEncoding, rateLimit);
      info.channels = common.channels;
      info.frameCount = common.frameCount;
      info.encoding = common.encoding;
      info.sampleSize = common.sampleSize;
      info.sampleRate = common.sampleRate;
      info.littleEndian = common.littleEndian;
      info.isUnsigned = common.isUnsigned;
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

CommonChunk parseCommonChunk(ByteView body, bool isAIFC, bool anyEncoding, double rateLimit) {
  if (body.size() < aiff_layout::commonSize) throw ConversionError(Case::missingComm);
  const Fields fields = fieldsOf(body);
  const std::int16_t channels = fields.i16(0);
  const std::uint32_t frameCount = fields.u32(2);
  const double sampleRate = decodeExtended80(body.subspan(8, extended80Size));

  Compression compression = ordinary[0];
  if (isAIFC) {
    if (body.size() < aiff_layout::compressedCommonSize) throw ConversionError(Case::missingComm);
    compression = compressionOf(fields.id(18), anyEncoding);
  }
  if (channels < 1)
    throw ConversionError::unsupported(UnsupportedKind::channels, {std::int64_t{channels}});
  const std::uint16_t sampleSize = sampleSizeOf(compression, fields.i16(6));
  // Asked this way round, not-a-number is refused as well.
  if (!(sampleRate >= 1.0 && sampleRate < rateLimit))
    throw ConversionError::unsupported(UnsupportedKind::sampleRate, {sampleRate});
  return {.channels = static_cast<std::uint16_t>(channels),
          .frameCount = frameCount,
          .encoding = compression.encoding,
          .sampleSize = sampleSize,
          .sampleRate = sampleRate,
          .littleEndian = compression.littleEndian,
          .isUnsigned = compression.type == "raw "};
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
