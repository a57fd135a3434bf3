#include "wav/wav_writer.hpp"

#include <array>
#include <cmath>
#include <limits>

#include "vocabulary/chunks.hpp"
#include "vocabulary/errors.hpp"
#include "wav/little_endian.hpp"

namespace corvana {
namespace {

/// {0000xxxx-0000-0010-8000-00AA00389B71}, the sub-format of a format tag, less the tag.
constexpr std::array<std::uint8_t, 14> subFormatEnd = {0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80,
                                                       0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};

std::uint16_t formatTagOf(SampleEncoding encoding) {
  switch (encoding) {
    case SampleEncoding::floatingPoint:
      return format_tag::floatingPoint;
    case SampleEncoding::aLaw:
      return format_tag::aLaw;
    case SampleEncoding::muLaw:
      return format_tag::muLaw;
    case SampleEncoding::integer:
      break;
  }
  return format_tag::pcm;
}

std::uint32_t channelMask(std::uint16_t channels) {
  if (channels == 1) return 0x4;  // front centre
  if (channels == 2) return 0x3;  // front left and right
  return 0;                       // no assignment
}

std::uint32_t blockAlignOf(const WavContent& content) {
  return content.channels * bytesFor(content.sampleSize);
}

/// With a zero at its end.
void appendText(ByteBuffer& body, const std::string& text) {
  body.insert(body.end(), text.begin(), text.end());
  body.push_back(0);
}

ByteBuffer buildCueTexts(const WavTexts& texts) {
  ByteBuffer list;
  appendFourCC(list, "adtl");
  const auto append = [&list](std::string_view id, const std::vector<CueText>& entries) {
    for (const CueText& entry : entries) {
      ByteBuffer body;
      appendUInt32LE(body, entry.cueID);
      appendText(body, entry.text);
      appendChunk(list, id, body, ByteOrder::little);
    }
  };
  append("labl", texts.labels);
  append("note", texts.notes);
  return list;
}

ByteBuffer buildInfoTexts(const std::vector<InfoText>& texts) {
  ByteBuffer list;
  appendFourCC(list, "INFO");
  for (const InfoText& entry : texts) {
    ByteBuffer body;
    appendText(body, entry.text);
    appendChunk(list, entry.id, body, ByteOrder::little);
  }
  return list;
}

void appendTexts(ByteBuffer& buffer, const WavTexts& texts) {
  if (!texts.labels.empty() || !texts.notes.empty())
    appendChunk(buffer, "LIST", buildCueTexts(texts), ByteOrder::little);
  if (!texts.info.empty())
    appendChunk(buffer, "LIST", buildInfoTexts(texts.info), ByteOrder::little);
  if (!texts.id3.empty()) appendChunk(buffer, "id3 ", texts.id3, ByteOrder::little);
}

}  // namespace

ByteBuffer buildFormatChunk(const WavContent& content) {
  const bool extensible = content.sampleSize % 8 != 0 || content.channels > 2;
  const std::uint32_t blockAlign = blockAlignOf(content);
  const std::uint16_t formatTag = formatTagOf(content.encoding);
  ByteBuffer body;
  appendUInt16LE(body, extensible ? format_tag::extensible : formatTag);
  appendUInt16LE(body, content.channels);
  appendUInt32LE(body, content.sampleRate);
  appendUInt32LE(body, content.sampleRate * blockAlign);  // bytes per second, its low 32 bits
  appendUInt16LE(body, static_cast<std::uint16_t>(blockAlign));
  appendUInt16LE(body, static_cast<std::uint16_t>(8 * bytesFor(content.sampleSize)));
  if (extensible) {
    appendUInt16LE(body, 22);  // size of the extension
    appendUInt16LE(body, content.sampleSize);
    appendUInt32LE(body, channelMask(content.channels));
    appendUInt16LE(body, formatTag);
    appendBytes(body, subFormatEnd);
  } else if (formatTag != format_tag::pcm) {
    appendUInt16LE(body, 0);  // size of the extension
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

ByteBuffer buildSamplerChunk(const WavContent& content) {
  const WavMetadata& metadata = content.metadata;
  const double samplePeriod = std::round(1e9 / content.sampleRate);  // nanoseconds
  ByteBuffer body;
  appendUInt32LE(body, 0);  // manufacturer
  appendUInt32LE(body, 0);  // product
  appendUInt32LE(body, static_cast<std::uint32_t>(samplePeriod));
  appendUInt32LE(body, metadata.unityNote);
  appendUInt32LE(body, metadata.pitchFraction);
  appendUInt32LE(body, 0);  // SMPTE format
  appendUInt32LE(body, 0);  // SMPTE offset
  appendUInt32LE(body, static_cast<std::uint32_t>(metadata.loops.size()));
  appendUInt32LE(body, 0);  // sampler data size
  for (const SampleLoop& loop : metadata.loops) {
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

SurroundingBytes writeWav(const WavContent& content) {
  const WavMetadata& metadata = content.metadata;
  const std::uint64_t dataSize = std::uint64_t{content.frameCount} * blockAlignOf(content);
  SurroundingBytes file;
  if (dataSize % 2 != 0) file.trailer.push_back(0);
  if (!metadata.cuePoints.empty())
    appendChunk(file.trailer, "cue ", buildCueChunk(metadata.cuePoints));
  if (metadata.instrument) {
    appendChunk(file.trailer, "smpl", buildSamplerChunk(content));
    appendChunk(file.trailer, "inst", buildInstrumentChunk(*metadata.instrument));
  }
  appendTexts(file.trailer, metadata.texts);

  ByteBuffer chunks;
  appendChunk(chunks, "fmt ", buildFormatChunk(content));
  if (content.encoding != SampleEncoding::integer) {
    ByteBuffer fact;
    appendUInt32LE(fact, content.frameCount);
    appendChunk(chunks, "fact", fact);
  }
  const std::uint64_t riffSize =
      4 + chunks.size() + chunkHeaderSize + dataSize + file.trailer.size();
  if (riffSize > std::numeric_limits<std::uint32_t>::max())
    throw ConversionError(ConversionError::Case::tooLarge);
  appendFourCC(file.header, "RIFF");
  appendUInt32LE(file.header, static_cast<std::uint32_t>(riffSize));
  appendFourCC(file.header, "WAVE");
  appendBytes(file.header, chunks);
  appendFourCC(file.header, "data");
  appendUInt32LE(file.header, static_cast<std::uint32_t>(dataSize));
  return file;
}

}  // namespace corvana
