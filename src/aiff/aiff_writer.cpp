#include "aiff/aiff_writer.hpp"

#include <limits>

#include "aiff/aiff_texts.hpp"
#include "aiff/big_endian.hpp"
#include "aiff/extended80.hpp"
#include "aiff/mac_roman.hpp"
#include "vocabulary/errors.hpp"

namespace corvana {
namespace {

/// Signed fields are written as their two's-complement bytes.
void appendInt16BE(ByteBuffer& buffer, std::int16_t value) {
  appendUInt16BE(buffer, static_cast<std::uint16_t>(value));
}

constexpr std::uint32_t formatVersion = 0xA280'5140;  // of AIFF-C; there is no other

struct CompressionName {
  std::string_view type;
  std::string_view name;  ///< Mac OS Roman
};

/// The names that the publisher of the types gave them.
CompressionName compressionOf(const AiffContent& content) {
  switch (content.encoding) {
    case SampleEncoding::floatingPoint:
      if (content.sampleSize == 64) return {"fl64", "64-bit floating point"};
      return {"fl32", "32-bit floating point"};
    case SampleEncoding::aLaw:
      return {"alaw", "ALaw 2:1"};
    case SampleEncoding::muLaw:
      return {"ulaw", "\xB5Law 2:1"};
    case SampleEncoding::integer:
      break;
  }
  return {"NONE", "not compressed"};
}

/// Of logarithmic samples the chunk states what they become.
std::uint16_t statedSampleSize(const AiffContent& content) {
  const bool isLogarithmic =
      content.encoding == SampleEncoding::aLaw || content.encoding == SampleEncoding::muLaw;
  return isLogarithmic ? 16 : content.sampleSize;
}

ByteBuffer buildCommonChunk(const AiffContent& content) {
  ByteBuffer body;
  appendUInt16BE(body, content.channels);
  appendUInt32BE(body, content.frameCount);
  appendUInt16BE(body, statedSampleSize(content));
  appendExtended80(body, content.sampleRate);
  if (content.isCompressed()) {
    const auto [type, name] = compressionOf(content);
    appendFourCC(body, type);
    appendPString(body, name);
  }
  return body;
}

ByteBuffer buildMarkerChunk(const std::vector<AiffMarker>& markers) {
  ByteBuffer body;
  appendUInt16BE(body, static_cast<std::uint16_t>(markers.size()));
  for (const AiffMarker& marker : markers) {
    appendInt16BE(body, marker.id);
    appendUInt32BE(body, marker.position);
    appendPString(body, encodeMacRoman(marker.name));
  }
  return body;
}

void appendLoop(ByteBuffer& body, const AiffLoop& loop) {
  appendInt16BE(body, loop.playMode);
  appendInt16BE(body, loop.beginMarker);
  appendInt16BE(body, loop.endMarker);
}

ByteBuffer buildInstrumentChunk(const AiffInstrument& instrument) {
  ByteBuffer body;
  for (const std::int8_t field :
       {instrument.baseNote, instrument.detune, instrument.lowNote, instrument.highNote,
        instrument.lowVelocity, instrument.highVelocity})
    body.push_back(static_cast<std::uint8_t>(field));
  appendInt16BE(body, instrument.gain);
  appendLoop(body, instrument.sustainLoop);
  appendLoop(body, instrument.releaseLoop);
  return body;
}

ByteView bytesOf(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

ByteBuffer buildCommentChunk(const std::vector<AiffComment>& comments) {
  ByteBuffer body;
  appendUInt16BE(body, static_cast<std::uint16_t>(comments.size()));
  for (const AiffComment& comment : comments) {
    const std::string text = encodeAiffText(comment.text, aiff_layout::longestComment);
    appendUInt32BE(body, 0);  // time stamp
    appendInt16BE(body, comment.marker);
    appendUInt16BE(body, static_cast<std::uint16_t>(text.size()));
    appendBytes(body, bytesOf(text));
    if (text.size() % 2 != 0) body.push_back(0);
  }
  return body;
}

void appendTexts(ByteBuffer& buffer, const AiffTexts& texts) {
  if (!texts.comments.empty()) appendAiffChunk(buffer, "COMT", buildCommentChunk(texts.comments));
  for (const AiffText& text : texts.texts)
    appendAiffChunk(buffer, text.id, bytesOf(encodeAiffText(text.text, text.text.size())));
  if (!texts.id3.empty()) appendAiffChunk(buffer, "ID3 ", texts.id3);
}

}  // namespace

SurroundingBytes writeAiff(const AiffContent& content) {
  ByteBuffer chunks;
  if (content.isCompressed()) {
    ByteBuffer version;
    appendUInt32BE(version, formatVersion);
    appendAiffChunk(chunks, "FVER", version);
  }
  appendAiffChunk(chunks, "COMM", buildCommonChunk(content));
  if (!content.markers.empty()) appendAiffChunk(chunks, "MARK", buildMarkerChunk(content.markers));
  if (content.instrument)
    appendAiffChunk(chunks, "INST", buildInstrumentChunk(*content.instrument));

  const std::uint64_t frameSize = std::uint64_t{content.channels} * bytesFor(content.sampleSize);
  const std::uint64_t soundChunkSize =
      aiff_layout::soundHeaderSize + content.frameCount * frameSize;
  SurroundingBytes file;
  if (soundChunkSize % 2 != 0) file.trailer.push_back(0);
  appendTexts(file.trailer, content.texts);
  const std::uint64_t formSize =
      4 + chunks.size() + chunkHeaderSize + soundChunkSize + file.trailer.size();
  if (formSize > std::numeric_limits<std::uint32_t>::max())
    throw ConversionError(ConversionError::Case::tooLarge);

  appendFourCC(file.header, "FORM");
  appendUInt32BE(file.header, static_cast<std::uint32_t>(formSize));
  appendFourCC(file.header, content.isCompressed() ? "AIFC" : "AIFF");
  appendBytes(file.header, chunks);
  appendFourCC(file.header, "SSND");
  appendUInt32BE(file.header, static_cast<std::uint32_t>(soundChunkSize));
  appendUInt32BE(file.header, 0);  // offset
  appendUInt32BE(file.header, 0);  // block size
  return file;
}

}  // namespace corvana
