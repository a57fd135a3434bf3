#include "convert/plan_aiff_to_wav.hpp"

#include <cmath>
#include <limits>
#include <utility>

#include "aiff/aiff_reader.hpp"
#include "convert/left_out.hpp"
#include "convert/map_aiff_to_wav.hpp"
#include "convert/map_texts.hpp"
#include "convert/reversible.hpp"
#include "convert/summary_key.hpp"
#include "vocabulary/errors.hpp"

namespace corvana {
namespace {

/// The declared frames, or as many as the sound chunk really holds.
std::uint32_t countFrames(const AiffInfo& info, std::uint64_t frameSize, Warnings& warnings) {
  const std::uint64_t available = info.soundSize / frameSize;
  if (available >= info.frameCount) return info.frameCount;
  addWarning(warnings, WarningKind::shortSoundData,
             {static_cast<std::int64_t>(available), std::int64_t{info.frameCount}});
  return static_cast<std::uint32_t>(available);
}

std::uint32_t roundRate(double sampleRate, Warnings& warnings) {
  constexpr double inaudible = 0.001;  // Hz
  const double rounded = std::round(sampleRate);
  if (std::fabs(sampleRate - rounded) > inaudible)
    addWarning(warnings, WarningKind::roundedRate,
               {sampleRate, static_cast<std::int64_t>(rounded)});
  return static_cast<std::uint32_t>(rounded);
}

Summary summarise(const WavContent& content) {
  const WavMetadata& metadata = content.metadata;
  Summary summary{.bits = content.sampleSize,
                  .channels = content.channels,
                  .sampleRate = content.sampleRate,
                  .loopCount = static_cast<std::int64_t>(metadata.loops.size()),
                  .cuePointCount = static_cast<std::int64_t>(metadata.cuePoints.size()),
                  .encoding = content.encoding};
  setKey(summary, metadata.instrument);
  return summary;
}

}  // namespace

ConversionPlan planAIFFToWAV(ByteView file, const ConversionOptions& options) {
  ConversionPlan plan;
  if (options.reversible)
    if (auto restored = planRestoring(file, /*isWAV=*/false, options, plan.warnings))
      return *std::move(restored);
  const AiffInfo info = parseAiff(file, options.anyEncoding);
  const std::uint32_t width = bytesFor(info.sampleSize);
  const bool isSigned = info.encoding == SampleEncoding::integer && !info.isUnsigned;
  // Bits below the sample size are copied as they are: the samples stay left-justified.
  plan.samples = {.offset = info.soundOffset,
                  .channels = info.channels,
                  .conversion = {width, width, /*reverseBytes=*/!info.littleEndian,
                                 /*turnSign=*/isSigned}};
  // WAV states the size of a frame in 16 bits.
  if (plan.samples.outputFrameSize() > std::numeric_limits<std::uint16_t>::max())
    throw ConversionError::unsupported(UnsupportedKind::channels, {std::int64_t{info.channels}});

  plan.samples.frameCount = countFrames(info, plan.samples.sourceFrameSize(), plan.warnings);
  WavContent content{.channels = info.channels,
                     .sampleSize = info.sampleSize,
                     .sampleRate = roundRate(info.sampleRate, plan.warnings),
                     .frameCount = plan.samples.frameCount,
                     .encoding = info.encoding};
  const AiffTextViews texts = options.keepsMore() ? findAiffTexts(file) : AiffTextViews();
  content.metadata = mapLoopsAndMarkers(info, content.frameCount, options, plan.warnings, texts);
  LeftOutChunks leftOut;
  addLeftOutOfAiff(file, options, leftOut);
  if (texts.hasFurtherComments) leftOut.add("COMT");
  if (options.keepTexts) mapTexts(texts, content.metadata.texts, leftOut);
  setLeftOut(leftOut, options, plan);
  auto [header, trailer] = writeWav(content);
  plan.header = std::move(header);
  plan.trailer = std::move(trailer);
  plan.summary = summarise(content);
  plan.content = std::move(content);
  if (options.reversible) makeReversible(plan, file, options);
  return plan;
}

}  // namespace corvana
