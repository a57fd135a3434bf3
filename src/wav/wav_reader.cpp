#include "wav/wav_reader.hpp"

#include <algorithm>

#include "vocabulary/chunks.hpp"
#include "vocabulary/errors.hpp"

namespace corvana {
namespace {

using Case = ConversionError::Case;

/// The byte order that the container says.
ByteOrder checkHeader(ByteView file, bool anyEncoding) {
  if (file.size() < fileHeaderSize) throw ConversionError(Case::notRIFF);
  const Fields header(file, ByteOrder::little);
  const bool isBigEndian = anyEncoding && header.id(0) == "RIFX";
  if (header.id(0) != "RIFF" && !isBigEndian) throw ConversionError(Case::notRIFF);
  if (header.id(8) != "WAVE") throw ConversionError(Case::notWAVE);
  return isBigEndian ? ByteOrder::big : ByteOrder::little;
}

/// Absent for what is not converted.
std::optional<SampleEncoding> encodingOf(std::uint16_t formatTag, bool anyEncoding) {
  if (formatTag == format_tag::pcm) return SampleEncoding::integer;
  if (!anyEncoding) return std::nullopt;
  if (formatTag == format_tag::floatingPoint) return SampleEncoding::floatingPoint;
  if (formatTag == format_tag::aLaw) return SampleEncoding::aLaw;
  if (formatTag == format_tag::muLaw) return SampleEncoding::muLaw;
  return std::nullopt;
}

/// Whether samples of this encoding, which are not integers, can take so many bytes.
bool canTake(SampleEncoding encoding, std::uint32_t bytesPerSample) {
  if (encoding == SampleEncoding::floatingPoint) return bytesPerSample == 4 || bytesPerSample == 8;
  return bytesPerSample == 1;
}

[[noreturn]] void refuse(std::uint16_t formatTag) {
  if (formatTag == format_tag::floatingPoint)
    throw ConversionError::unsupported(UnsupportedKind::floatingPointWav);
  throw ConversionError::unsupported(UnsupportedKind::formatTag, {std::int64_t{formatTag}});
}

}  // namespace

WavInfo parseWav(ByteView file, bool anyEncoding) {
  const ByteOrder order = checkHeader(file, anyEncoding);
  WavInfo info;
  info.order = order;
  bool hasFormat = false;
  bool hasData = false;
  walkChunks(file, order, [&](const Chunk& chunk) {
    if (chunk.id == "fmt ") {
      const FormatChunk format = parseFormatChunk(chunk.body, order, anyEncoding);
      info.channels = format.channels;
      info.sampleRate = format.sampleRate;
      info.encoding = format.encoding;
      info.bytesPerSample = format.bytesPerSample;
      info.bitsPerSample = format.bitsPerSample;
      hasFormat = true;
    } else if (chunk.id == "data") {
      info.dataOffset = chunk.bodyOffset;
      info.dataSize = chunk.body.size();
      hasData = true;
    } else if (chunk.id == "smpl") {
      const SamplerChunk sampler = parseSamplerChunk(chunk.body, order);
      info.midiUnityNote = sampler.midiUnityNote;
      info.midiPitchFraction = sampler.midiPitchFraction;
      info.loops = sampler.loops;
    } else if (chunk.id == "inst") {
      info.instrument = parseInstrumentChunk(chunk.body);
    } else if (chunk.id == "cue ") {
      info.cuePoints = parseCueChunk(chunk.body, order);
    }
  });
  if (!hasFormat) throw ConversionError(Case::missingFormat);
  if (!hasData) throw ConversionError(Case::missingData);
  return info;
}

FormatChunk parseFormatChunk(ByteView body, ByteOrder order, bool anyEncoding) {
  if (body.size() < wav_layout::formatSize) throw ConversionError(Case::badFormatChunk);
  const Fields fields(body, order);
  std::uint16_t formatTag = fields.u16(0);
  const std::uint16_t channels = fields.u16(2);
  const std::uint32_t sampleRate = fields.u32(4);
  const std::uint16_t declaredBlockAlign = fields.u16(12);
  const std::uint16_t bitsPerSample = fields.u16(14);

  std::uint16_t validBits = bitsPerSample;
  if (body.size() >= wav_layout::extensibleFormatSize && formatTag == format_tag::extensible) {
    if (fields.u16(18) != 0) validBits = fields.u16(18);
    formatTag = subFormatOf(body, order);
  }
  const std::optional<SampleEncoding> encoding = encodingOf(formatTag, anyEncoding);
  if (!encoding) refuse(formatTag);
  if (channels == 0 || sampleRate == 0 || bitsPerSample == 0)
    throw ConversionError(Case::badFormatChunk);

  // Some writers leave the block align at 0; whole bytes per sample are then the only choice.
  const std::uint32_t blockAlign = declaredBlockAlign != 0 ? std::uint32_t{declaredBlockAlign}
                                                           : (bitsPerSample + 7U) / 8U * channels;
  if (blockAlign % channels != 0) throw ConversionError(Case::badFormatChunk);
  const std::uint32_t bytesPerSample = blockAlign / channels;
  if (encoding != SampleEncoding::integer) {
    const std::uint32_t bits = 8 * bytesPerSample;
    const bool isFilled = bitsPerSample == bits && validBits == bits;
    if (!isFilled || !canTake(*encoding, bytesPerSample)) refuse(formatTag);
    return {channels, sampleRate, *encoding, bytesPerSample, bits};
  }
  if (bytesPerSample < 1 || bytesPerSample > 4)
    throw ConversionError::unsupported(UnsupportedKind::bitDepth, {std::int64_t{bitsPerSample}});
  return {channels, sampleRate, SampleEncoding::integer, bytesPerSample,
          std::min<std::uint32_t>(8 * bytesPerSample, validBits)};
}

std::uint16_t subFormatOf(ByteView body, ByteOrder order) {
  return static_cast<std::uint16_t>(Fields(body, order).u32(24));
}

SamplerChunk parseSamplerChunk(ByteView body, ByteOrder order) {
  if (body.size() < wav_layout::samplerHeaderSize) return {};
  const Fields fields(body, order);
  SamplerChunk sampler;
  sampler.midiUnityNote = fields.u32(12);
  sampler.midiPitchFraction = fields.u32(16);
  const std::uint32_t declaredLoops = fields.u32(28);
  sampler.loops.emplace(body.subspan(wav_layout::samplerHeaderSize), declaredLoops, order);
  return sampler;
}

SampleLoop decodeLoop(ByteView record, ByteOrder order) {
  const Fields fields(record, order);
  SampleLoop loop;
  loop.cueID = fields.u32(0);
  loop.type = fields.u32(4);
  loop.start = fields.u32(8);
  loop.end = fields.u32(12);
  loop.playCount = fields.u32(20);
  return loop;
}

CuePointView parseCueChunk(ByteView body, ByteOrder order) {
  if (body.size() < wav_layout::cueHeaderSize) return {};
  const std::uint32_t declaredPoints = Fields(body, order).u32(0);
  return {body.subspan(wav_layout::cueHeaderSize), declaredPoints, order};
}

CuePoint decodeCuePoint(ByteView record, ByteOrder order) {
  const Fields fields(record, order);
  CuePoint point;
  point.id = fields.u32(0);
  // The sample offset, not the play-order position at offset 4: that one is only meaningful
  // together with a playlist.
  point.position = fields.u32(20);
  return point;
}

std::optional<InstrumentChunk> parseInstrumentChunk(ByteView body) {
  if (body.size() < wav_layout::instrumentSize) return std::nullopt;
  const Fields fields(body, ByteOrder::little);
  InstrumentChunk instrument;
  instrument.unshiftedNote = fields.u8(0);
  instrument.fineTune = fields.i8(1);
  instrument.gain = fields.i8(2);
  instrument.lowNote = fields.u8(3);
  instrument.highNote = fields.u8(4);
  instrument.lowVelocity = fields.u8(5);
  instrument.highVelocity = fields.u8(6);
  return instrument;
}

}  // namespace corvana
