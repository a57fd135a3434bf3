#include "wav/wav_writer.hpp"

#include <array>
#include <cmath>
#include <limits>

#include "vocabulary/chunks.hpp"
#include "vocabulary/errors.hpp"
#include "wav/little_endian.hpp"

namespace corvana {
namespace {

/// {00000001-0000-0010-8000-00AA00389B71}, the sub-format of integer PCM.
constexpr std::array<std::uint8_t, 16> pcmSubFormat = {
    0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};

std::uint32_t channelMask(std::uint16_t channels) {
  if (channels == 1) return 0x4;  // front centre
  if (channels == 2) return 0x3;  // front left and right
  return 0;                       // no assignment
}

ByteBuffer assembleTrailing(std::uint64_t dataSize, const TrailingChunks& chunks) {
  ByteBuffer trailing;
  if (dataSize % 2 != 0) trailing.push_back(0);
  if (!chunks.cue.empty()) appendChunk(trailing, "cue ", chunks.cue);
  if (chunks.sampler) appendChunk(trailing, "smpl", *chunks.sampler);
  if (chunks.instrument) appendChunk(trailing, "inst", *chunks.instrument);
  return trailing;
}

ByteBuffer assembleHeader(ByteView formatBody, std::uint64_t dataSize, std::uint64_t trailingSize) {
  const std::uint64_t riffSize =
      4 + chunkHeaderSize + formatBody.size() + chunkHeaderSize + dataSize + trailingSize;
  if (riffSize > std::numeric_limits<std::uint32_t>::max())
    throw ConversionError(ConversionError::Case::tooLarge);
  ByteBuffer header;
  appendFourCC(header, "RIFF");
  appendUInt32LE(header, static_cast<std::uint32_t>(riffSize));
  appendFourCC(header, "WAVE");
  appendChunk(header, "fmt ", formatBody);
  appendFourCC(header, "data");
  appendUInt32LE(header, static_cast<std::uint32_t>(dataSize));
  return header;
}

}  // namespace

ByteBuffer buildFormatChunk(std::uint16_t channels, std::uint32_t rate, std::uint16_t sampleSize,
                            std::uint16_t bytesPerSample, std::uint16_t blockAlign) {
  const bool extensible = sampleSize % 8 != 0 || channels > 2;
  ByteBuffer body;
  appendUInt16LE(body, extensible ? format_tag::extensible : format_tag::pcm);
  appendUInt16LE(body, channels);
  appendUInt32LE(body, rate);
  appendUInt32LE(body, rate * blockAlign);  // bytes per second, its low 32 bits
  appendUInt16LE(body, blockAlign);
  appendUInt16LE(body, static_cast<std::uint16_t>(8 * bytesPerSample));
  if (extensible) {
    appendUInt16LE(body, 22);  // size of the extension
    appendUInt16LE(body, sampleSize);
    appendUInt32LE(body, channelMask(channels));
    appendBytes(body, pcmSubFormat);
  }
  return body;
}

ByteBuffer buildCueChunk(const std::vector<CuePoint>& cuePoints) {
  ByteBuffer body;
  body.reserve(wav_layout::cueHeaderSize + wav_layout::cuePointSize * cuePoints.size());
  appendUInt32LE(body, static_cast<std::uint32_t>(cuePoints.size()));
  for (const CuePoint& point : cuePoints) {
    appendUInt32LE(body, point.id);
    appendUInt32LE(body, point.position);
    appendFourCC(body, "data");
    appendUInt32LE(body, 0);  // chunk start
    appendUInt32LE(body, 0);  // block start
    appendUInt32LE(body, point.position);
  }
  return body;
}

ByteBuffer buildSamplerChunk(std::uint32_t rate, std::uint32_t unityNote,
                             std::uint32_t pitchFraction, const std::vector<SampleLoop>& loops) {
  const auto samplePeriod = static_cast<std::uint32_t>(std::round(1e9 / rate));  // nanoseconds
  ByteBuffer body;
  appendUInt32LE(body, 0);  // manufacturer
  appendUInt32LE(body, 0);  // product
  appendUInt32LE(body, samplePeriod);
  appendUInt32LE(body, unityNote);
  appendUInt32LE(body, pitchFraction);
  appendUInt32LE(body, 0);  // SMPTE format
  appendUInt32LE(body, 0);  // SMPTE offset
  appendUInt32LE(body, static_cast<std::uint32_t>(loops.size()));
  appendUInt32LE(body, 0);  // sampler data size
  for (const SampleLoop& loop : loops) {
    appendUInt32LE(body, loop.cueID);
    appendUInt32LE(body, loop.type);
    appendUInt32LE(body, loop.start);
    appendUInt32LE(body, loop.end);
    appendUInt32LE(body, 0);  // fraction
    appendUInt32LE(body, loop.playCount);
  }
  return body;
}

ByteBuffer buildInstrumentChunk(const InstrumentChunk& instrument) {
  return {instrument.unshiftedNote,
          static_cast<std::uint8_t>(instrument.fineTune),
          static_cast<std::uint8_t>(instrument.gain),
          instrument.lowNote,
          instrument.highNote,
          instrument.lowVelocity,
          instrument.highVelocity};
}

WavFileWriter::WavFileWriter(const OutputTarget& target, ByteView formatBody,
                             std::uint64_t dataSize, const TrailingChunks& trailing)
    : trailing_(assembleTrailing(dataSize, trailing)),
      file_(target, assembleHeader(formatBody, dataSize, trailing_.size())) {}

void WavFileWriter::finish() {
  file_.append(trailing_);
  file_.close();
}

}  // namespace corvana
