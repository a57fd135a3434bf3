#include <optional>

#include "check/checks.hpp"
#include "inspect/chunk_list.hpp"

namespace corvana {
namespace {

using Case = ConversionError::Case;

void checkCommon(Report& report, const SoundFormat& format, std::uint64_t offset) {
  constexpr double firstBadRate = 4'000'000'000.0;
  if (format.channels == 0)
    report.addError(ConversionError::unsupported(UnsupportedKind::channels, {std::int64_t{0}}),
                    offset);
  if (format.kind == SampleKind::integer && (format.bits < 1 || format.bits > 32))
    report.addError(
        ConversionError::unsupported(UnsupportedKind::bitDepth, {std::int64_t{format.bits}}),
        offset);
  if (!(format.sampleRate >= 1 && format.sampleRate < firstBadRate))
    report.addError(ConversionError::unsupported(UnsupportedKind::sampleRate, {format.sampleRate}),
                    offset);
}

void checkWavFormat(Report& report, const SoundFormat& format, ByteView body,
                    std::uint64_t offset) {
  const Fields fields(body, format.order);
  const std::uint32_t frameBytes = fields.u16(12);
  const std::uint32_t bits = fields.u16(14);
  const bool isCompressed = format.kind == SampleKind::compressed;
  if (format.channels == 0 || format.sampleRate == 0 || format.kind == SampleKind::unknown ||
      (!isCompressed && (bits == 0 || frameBytes % format.channels != 0))) {
    report.addError(ConversionError(Case::badFormatChunk), offset);
    return;
  }
  const std::uint32_t needed = bytesFor(bits) * format.channels;
  if (!isCompressed && frameBytes < needed)
    report.add({FindingKind::frameSize,
                Severity::warning,
                offset,
                {},
                {},
                {std::int64_t{frameBytes}, std::int64_t{needed}}});
}

}  // namespace

void checkFormat(Report& report) {
  const FileDescription& file = report.file;
  const bool isAIFF = file.isAIFF();
  bool isThere = false;
  // Each of them: a damaged one keeps readers from going on to the last, which counts.
  listChunks(report.content, [&](const ChunkEntry& entry, ByteView body) {
    if (entry.id != (isAIFF ? "COMM" : "fmt ")) return;
    isThere = true;
    const auto format = describeFormatChunk(body, file.chunks.container);
    if (!format)
      report.addError(ConversionError(isAIFF ? Case::missingComm : Case::badFormatChunk),
                      entry.offset);
    else if (isAIFF)
      checkCommon(report, *format, entry.offset);
    else
      checkWavFormat(report, *format, body, entry.offset);
  });
  if (!isThere) report.addError(ConversionError(isAIFF ? Case::missingComm : Case::missingFormat));
  const bool needsSamples = !isAIFF || file.declaredFrames.value_or(1) != 0;
  if (!file.hasSamples && needsSamples)
    report.addError(ConversionError(isAIFF ? Case::missingSound : Case::missingData));
}

void checkSampleData(Report& report) {
  const FileDescription& file = report.file;
  const std::uint64_t frameBytes = file.format ? file.format->frameBytes() : 0;
  if (!file.hasSamples || frameBytes == 0) return;
  const ChunkEntry* const sound = report.chunk(file.isAIFF() ? "SSND" : "data");
  if (sound == nullptr) return;
  std::uint64_t leftOver = file.dataSize % frameBytes;
  if (file.isAIFF()) {
    if (!file.declaredFrames) return;
    const std::uint64_t declaredSize = *file.declaredFrames * frameBytes;
    // A block size says that there may be more than the frames; and some writers count the pad
    // byte.
    const bool mayHoldMore = Fields(report.bodyOf(*sound), ByteOrder::big).u32(4) != 0 ||
                             file.dataSize == declaredSize + declaredSize % 2;
    const std::uint64_t held = file.dataSize / frameBytes;
    if (held < *file.declaredFrames || (held > *file.declaredFrames && !mayHoldMore))
      report.add({FindingKind::frameCount,
                  held < *file.declaredFrames ? Severity::error : Severity::warning,
                  sound->offset,
                  static_cast<std::int64_t>(held),
                  {},
                  {valueOf(*file.declaredFrames), valueOf(held)}});
    if (mayHoldMore) leftOver = 0;
  }
  if (leftOver != 0 && sound->presentSize == sound->declaredSize)
    report.add({FindingKind::wholeFrames,
                Severity::warning,
                file.dataOffset + file.dataSize - leftOver,
                static_cast<std::int64_t>(file.dataSize / frameBytes),
                {},
                {valueOf(leftOver)}});
}

}  // namespace corvana
