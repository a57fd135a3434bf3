#include "wav/wav_reader.hpp"

#include <algorithm>

#include "vocabulary/chunks.hpp"
#include "vocabulary/errors.hpp"

namespace corvana {
namespace {

using Case = ConversionError::Case;

Fields fieldsOf(ByteView bytes) {
  return {bytes, ByteOrder::little};
}

void checkHeader(ByteView file) {
  if (file.size() < fileHeaderSize) throw ConversionError(Case::notRIFF);
  const Fields header = fieldsOf(file);
  if (header.id(0) != "RIFF") throw ConversionError(Case::notRIFF);
  if (header.id(8) != "WAVE") throw ConversionError(Case::notWAVE);
}

}  // namespace

WavInfo parseWav(ByteView file) {
  checkHeader(file);
  WavInfo info;
  bool hasFormat = false;
  bool hasData = false;
  walkChunks(file, ByteOrder::little, [&](const Chunk& chunk) {
    if (chunk.id == "fmt ") {
      const FormatChunk format = parseFormatChunk(chunk.body);
      info.channels = format.channels;
      info.sampleRate = format.sampleRate;
      info.bytesPerSample = format.bytesPerSample;
      info.bitsPerSample = format.bitsPerSample;
      hasFormat = true;
    } else if (chunk.id == "data") {
      info.dataOffset = chunk.bodyOffset;
      info.dataSize = chunk.body.size();
      hasData = true;
    } else if (chunk.id == "smpl") {
      const SamplerChunk sampler = parseSamplerChunk(chunk.body);
      info.midiUnityNote = sampler.midiUnityNote;
      info.midiPitchFraction = sampler.midiPitchFraction;
      info.loops = sampler.loops;
    } else if (chunk.id == "inst") {
      info.instrument = parseInstrumentChunk(chunk.body);
    } else if (chunk.id == "cue ") {
      info.cuePoints = parseCueChunk(chunk.body);
    }
  });
  if (!hasFormat) throw ConversionError(Case::missingFormat);
  if (!hasData) throw ConversionError(Case::missingData);
  return info;
}

FormatChunk parseFormatChunk(ByteView body) {
  if (body.size() < wav_layout::formatSize) throw ConversionError(Case::badFormatChunk);
  const Fields fields = fieldsOf(body);
  std::uint16_t formatTag = fields.u16(0);
  const std::uint16_t channels = fields.u16(2);
  const std::uint32_t sampleRate = fields.u32(4);
  const std::uint16_t declaredBlockAlign = fields.u16(12);
  const std::uint16_t bitsPerSample = fields.u16(14);

  std::uint16_t validBits = bitsPerSample;
  if (body.size() >= wav_layout::extensibleFormatSize && formatTag == format_tag::extensible) {
    if (fields.u16(18) != 0) validBits = fields.u16(18);
    formatTag = fields.u16(24);
  }
  if (formatTag == format_tag::floatingPoint)
    throw ConversionError::unsupported(UnsupportedKind::floatingPointWav);
  if (formatTag != format_tag::pcm)
    throw ConversionError::unsupported(UnsupportedKind::formatTag, {std::int64_t{formatTag}});
  if (channels == 0 || sampleRate == 0 || bitsPerSample == 0)
    throw ConversionError(Case::badFormatChunk);

  // Some writers leave the block align at 0; whole bytes per sample are then the only choice.
  const std::uint32_t blockAlign = declaredBlockAlign != 0 ? std::uint32_t{declaredBlockAlign}
                                                           : (bitsPerSample + 7U) / 8U * channels;
  if (blockAlign % channels != 0) throw ConversionError(Case::badFormatChunk);
  const std::uint32_t bytesPerSample = blockAlign / channels;
  if (bytesPerSample < 1 || bytesPerSample > 4)
    throw ConversionError::unsupported(UnsupportedKind::bitDepth, {std::int64_t{bitsPerSample}});
  return {channels, sampleRate, bytesPerSample,
          std::min<std::uint32_t>(8 * bytesPerSample, validBits)};
}

SamplerChunk parseSamplerChunk(ByteView body) {
  if (body.size() < wav_layout::samplerHeaderSize) return {};
  const Fields fields = fieldsOf(body);
  SamplerChunk sampler;
  sampler.midiUnityNote = fields.u32(12);
  sampler.midiPitchFraction = fields.u32(16);
  const std::uint32_t declaredLoops = fields.u32(28);
  sampler.loops.emplace(body.subspan(wav_layout::samplerHeaderSize), declaredLoops);
  return sampler;
}

SampleLoop decodeLoop(ByteView record) {
  const Fields fields = fieldsOf(record);
  SampleLoop loop;
  loop.cueID = fields.u32(0);
  loop.type = fields.u32(4);
  loop.start = fields.u32(8);
  loop.end = fields.u32(12);
  loop.playCount = fields.u32(20);
  return loop;
}

CuePointView parseCueChunk(ByteView body) {
  if (body.size() < wav_layout::cueHeaderSize) return {};
  const std::uint32_t declaredPoints = fieldsOf(body).u32(0);
  return {body.subspan(wav_layout::cueHeaderSize), declaredPoints};
}

CuePoint decodeCuePoint(ByteView record) {
  const Fields fields = fieldsOf(record);
  CuePoint point;
  point.id = fields.u32(0);
  // The sample offset, not the play-order position at offset 4: that one is only meaningful
  // together with a playlist.
  point.position = fields.u32(20);
  return point;
}

std::optional<InstrumentChunk> parseInstrumentChunk(ByteView body) {
  if (body.size() < wav_layout::instrumentSize) return std::nullopt;
  const Fields fields = fieldsOf(body);
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
