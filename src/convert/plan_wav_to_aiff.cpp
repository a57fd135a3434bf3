#include "convert/plan_wav_to_aiff.hpp"

#include <limits>
#include <utility>

#include "convert/left_out.hpp"
#include "convert/map_texts.hpp"
#include "convert/map_wav_to_aiff.hpp"
#include "convert/reversible.hpp"
#include "convert/summary_key.hpp"
#include "vocabulary/errors.hpp"
#include "wav/wav_reader.hpp"

namespace corvana {
namespace {

/// Leaves 1 KiB of the 32-bit form size to the chunks ahead of the sound data. More than that
/// is checked once they are assembled.
constexpr std::uint64_t maxSoundChunkSize = std::numeric_limits<std::uint32_t>::max() - 1025;

/// The whole frames.
SampleRun findSamples(const WavInfo& info, Warnings& warnings) {
  SampleRun samples{.offset = info.dataOffset,
                    .channels = info.channels,
                    .conversion = {info.bytesPerSample, bytesFor(info.bitsPerSample),
                                   /*reverseBytes=*/info.order == ByteOrder::little,
                                   /*turnSign=*/info.encoding == SampleEncoding::integer}};
  const std::uint64_t frameCount = info.dataSize / samples.sourceFrameSize();
  if (info.dataSize % samples.sourceFrameSize() != 0)
    addWarning(warnings, WarningKind::incompleteFrame);
  if (frameCount * samples.outputFrameSize() + aiff_layout::soundHeaderSize > maxSoundChunkSize)
    throw ConversionError(ConversionError::Case::tooLarge);
  samples.frameCount = static_cast<std::uint32_t>(frameCount);
  return samples;
}

Summary summarise(const AiffContent& content, std::size_t loopCount) {
  Summary summary{.bits = content.sampleSize,
                  .channels = content.channels,
                  .sampleRate = content.sampleRate,
                  .loopCount = static_cast<std::int64_t>(loopCount),
                  .markerCount = static_cast<std::int64_t>(content.markers.size()),
                  .encoding = content.encoding};
  setKey(summary, content.instrument);
  return summary;
}

}  // namespace

ConversionPlan planWAVToAIFF(ByteView file, const ConversionOptions& options) {
  ConversionPlan plan;
  if (options.reversible)
    if (auto restored = planRestoring(file, /*isWAV=*/true, options, plan.warnings))
      return *std::move(restored);
  const WavInfo info = parseWav(file, options.anyEncoding);
  // AIFF counts channels in a signed field.
  if (info.channels > std::numeric_limits<std::int16_t>::max())
    throw ConversionError::unsupported(UnsupportedKind::channels, {std::int64_t{info.channels}});

  plan.samples = findSamples(info, plan.warnings);
  const WavTextViews texts = options.keepsMore() ? findWavTexts(file) : WavTextViews();
  AiffMetadata metadata =
      mapWavMetadata(info, plan.samples.frameCount, options, plan.warnings, texts);
  AiffContent content{.channels = info.channels,
                      .sampleSize = static_cast<std::uint16_t>(info.bitsPerSample),
                      .sampleRate = info.sampleRate,
                      .frameCount = plan.samples.frameCount,
                      .markers = std::move(metadata.markers),
                      .instrument = metadata.instrument,
                      .encoding = info.encoding,
                      .texts = {.comments = std::move(metadata.comments)}};
  LeftOutChunks leftOut;
  addLeftOutOfWav(file, options, leftOut);
  if (options.keepNames) addEarlierLabels(texts, leftOut);
  if (options.keepTexts) mapTexts(texts, content.texts, leftOut);
  setLeftOut(leftOut, options, plan);
  auto [header, trailer] = writeAiff(content);
  plan.header = std::move(header);
  plan.trailer = std::move(trailer);
  plan.summary = summarise(content, metadata.loops.size());
  plan.content = std::move(content);
  if (options.reversible) makeReversible(plan, file, options);
  return plan;
}

}  // namespace corvana
