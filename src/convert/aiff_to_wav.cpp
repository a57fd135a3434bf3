#include "convert/aiff_to_wav.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

#include "aiff/aiff_reader.hpp"
#include "convert/aiff_to_wav_metadata.hpp"
#include "convert/copy_sample_frames.hpp"
#include "platform/texts.hpp"
#include "vocabulary/errors.hpp"
#include "vocabulary/sample_blocks.hpp"
#include "vocabulary/summary.hpp"
#include "wav/wav_writer.hpp"

namespace corvana {
namespace {

/// The declared frames, or as many as the sound chunk really holds.
std::uint32_t countFrames(const AiffInfo& info, std::uint32_t blockAlign, Warnings& warnings) {
  const std::uint64_t available = info.soundSize / blockAlign;
  if (available >= info.frameCount) return info.frameCount;
  warnings.push_back(
      fillText(localised("The SSND chunk contains less data than declared – %@ instead of %@ "
                         "frames used."),
               {decimalText(static_cast<std::int64_t>(available)),
                decimalText(std::int64_t{info.frameCount})}));
  return static_cast<std::uint32_t>(available);
}

std::uint32_t roundRate(double sampleRate, Warnings& warnings) {
  constexpr double inaudible = 0.001;  // Hz
  const double rounded = std::round(sampleRate);
  if (std::fabs(sampleRate - rounded) > inaudible)
    warnings.push_back(
        fillText(localised("Sample rate of %@ Hz rounded to %@ Hz (WAV only supports whole "
                           "numbers)."),
                 {decimalText(sampleRate), decimalText(static_cast<std::int64_t>(rounded))}));
  return static_cast<std::uint32_t>(rounded);
}

TrailingChunks buildTrailingChunks(const WavMetadata& metadata, std::uint32_t rate) {
  TrailingChunks chunks;
  if (!metadata.cuePoints.empty()) chunks.cue = buildCueChunk(metadata.cuePoints);
  if (metadata.instrument) {
    chunks.sampler =
        buildSamplerChunk(rate, metadata.unityNote, metadata.pitchFraction, metadata.loops);
    chunks.instrument = buildInstrumentChunk(*metadata.instrument);
  }
  return chunks;
}

}  // namespace

ConversionResult convertAIFFToWAV(const InputFile& input, const OutputTarget& output,
                                  const ProgressHandler& progress) {
  const AiffInfo info = input.read(parseAiff);
  const auto bytesPerSample = static_cast<std::uint16_t>((info.sampleSize + 7) / 8);
  const std::uint32_t blockAlign = std::uint32_t{info.channels} * bytesPerSample;
  // WAV states the size of a frame in 16 bits.
  if (blockAlign > std::numeric_limits<std::uint16_t>::max())
    throw ConversionError::unsupported(channelsText(info.channels));

  Warnings warnings;
  const std::uint32_t framesUsed = countFrames(info, blockAlign, warnings);
  const std::uint32_t rate = roundRate(info.sampleRate, warnings);
  const WavMetadata metadata = mapLoopsAndMarkers(info, framesUsed, warnings);

  const SampleLayout layout{
      .frameCount = framesUsed, .sourceFrameSize = blockAlign, .outputFrameSize = blockAlign};
  const ByteBuffer format = buildFormatChunk(info.channels, rate, info.sampleSize, bytesPerSample,
                                             static_cast<std::uint16_t>(blockAlign));
  WavFileWriter writer(output, format, layout.frameCount * layout.outputFrameSize,
                       buildTrailingChunks(metadata, rate));
  // Bits below the sample size are copied as they are: the samples stay left-justified.
  const SampleConversion samples{bytesPerSample, bytesPerSample, !info.littleEndian};
  writeSampleBlocks(layout, copySampleFrames(input, info.soundOffset, samples, layout),
                    writer.file(), progress);
  writer.finish();
  if (progress && framesUsed == 0) progress(1.0);

  std::string summary =
      makeSummary(info.sampleSize, info.channels, rate, metadata.rootKey, metadata.fineTune,
                  static_cast<std::int64_t>(metadata.loops.size()), 0,
                  static_cast<std::int64_t>(metadata.cuePoints.size()));
  return {output.url, std::move(summary), std::move(warnings)};
}

}  // namespace corvana
