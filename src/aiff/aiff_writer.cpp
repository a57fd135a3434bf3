#include "aiff/aiff_writer.hpp"

#include <array>
#include <limits>

#include "aiff/big_endian.hpp"
#include "aiff/extended80.hpp"
#include "vocabulary/errors.hpp"

namespace corvana {
namespace {

/// Signed fields are written as their two's-complement bytes.
void appendInt16BE(ByteBuffer& buffer, std::int16_t value) {
  appendUInt16BE(buffer, static_cast<std::uint16_t>(value));
}

ByteBuffer buildCommonChunk(const AiffContent& content, std::uint32_t frameCount) {
  ByteBuffer body;
  appendUInt16BE(body, content.channels);
  appendUInt32BE(body, frameCount);
  appendUInt16BE(body, content.sampleSize);
  appendExtended80(body, content.sampleRate);
  return body;
}

ByteBuffer buildMarkerChunk(const std::vector<AiffMarker>& markers) {
  ByteBuffer body;
  appendUInt16BE(body, static_cast<std::uint16_t>(markers.size()));
  for (const AiffMarker& marker : markers) {
    appendInt16BE(body, marker.id);
    appendUInt32BE(body, marker.position);
    appendPString(body, marker.name);
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

/// Everything up to the first sample byte.
ByteBuffer assembleHeader(const AiffContent& content, const SampleLayout& layout) {
  ByteBuffer chunks;
  appendAiffChunk(chunks, "COMM",
                  buildCommonChunk(content, static_cast<std::uint32_t>(layout.frameCount)));
  if (!content.markers.empty()) appendAiffChunk(chunks, "MARK", buildMarkerChunk(content.markers));
  if (content.instrument)
    appendAiffChunk(chunks, "INST", buildInstrumentChunk(*content.instrument));

  const std::uint64_t soundChunkSize =
      aiff_layout::soundHeaderSize + layout.frameCount * layout.outputFrameSize;
  const std::uint64_t formSize =
      4 + chunks.size() + chunkHeaderSize + soundChunkSize + soundChunkSize % 2;
  if (formSize > std::numeric_limits<std::uint32_t>::max())
    throw ConversionError(ConversionError::Case::tooLarge);

  ByteBuffer header;
  appendFourCC(header, "FORM");
  appendUInt32BE(header, static_cast<std::uint32_t>(formSize));
  appendFourCC(header, "AIFF");
  appendBytes(header, chunks);
  appendFourCC(header, "SSND");
  appendUInt32BE(header, static_cast<std::uint32_t>(soundChunkSize));
  appendUInt32BE(header, 0);  // offset
  appendUInt32BE(header, 0);  // block size
  return header;
}

}  // namespace

OutputFile writeAiff(const OutputTarget& target, const AiffContent& content,
                     const SampleLayout& layout, const FillBlock& fillBlock,
                     const ProgressHandler& progress) {
  OutputFile file(target, assembleHeader(content, layout));
  writeSampleBlocks(layout, fillBlock, file, progress);
  if (layout.frameCount * layout.outputFrameSize % 2 != 0)
    file.append(std::array<std::uint8_t, 1>{0});
  return file;
}

}  // namespace corvana
