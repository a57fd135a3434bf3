#include "convert/wav_to_aiff.hpp"

#include <limits>

#include "aiff/aiff_writer.hpp"
#include "convert/copy_sample_frames.hpp"
#include "convert/wav_to_aiff_metadata.hpp"
#include "platform/texts.hpp"
#include "vocabulary/errors.hpp"
#include "vocabulary/sample_blocks.hpp"
#include "vocabulary/summary.hpp"
#include "wav/wav_reader.hpp"

namespace corvana {
namespace {

/// Leaves 1 KiB of the 32-bit form size to the chunks ahead of the sound data. More than that
/// is checked once they are assembled.
constexpr std::uint64_t mostSoundChunkBytes = std::numeric_limits<std::uint32_t>::max() - 1025;

}  // namespace

ConversionResult convertWAVToAIFF(const InputFile& input, const OutputTarget& output,
                                  const ProgressHandler& progress) {
  const WavInfo info = input.read(parseWav);
  // AIFF counts channels in a signed field.
  if (info.channels > std::numeric_limits<std::int16_t>::max())
    throw ConversionError::unsupported(channelsText(info.channels));

  const SampleConversion samples{.sourceWidth = info.bytesPerSample,
                                 .outputWidth = (info.bitsPerSample + 7) / 8};
  SampleLayout layout;
  layout.sourceFrameSize = std::uint64_t{info.channels} * samples.sourceWidth;
  layout.outputFrameSize = std::uint64_t{info.channels} * samples.outputWidth;
  layout.frameCount = info.dataSize / layout.sourceFrameSize;
  Warnings warnings;
  if (info.dataSize % layout.sourceFrameSize != 0)
    warnings.push_back(localised("Incomplete last frame discarded."));
  if (layout.frameCount * layout.outputFrameSize + aiff_layout::soundHeaderSize >
      mostSoundChunkBytes)
    throw ConversionError(ConversionError::Case::tooLarge);

  AiffMetadata metadata =
      mapWavMetadata(info, static_cast<std::uint32_t>(layout.frameCount), warnings);
  const AiffContent content{.channels = info.channels,
                            .sampleSize = static_cast<std::uint16_t>(info.bitsPerSample),
                            .sampleRate = info.sampleRate,
                            .markers = std::move(metadata.markers),
                            .instrument = metadata.instrument};

  OutputFile file = writeAiff(output, content, layout,
                              copySampleFrames(input, info.dataOffset, samples, layout), progress);
  if (progress && layout.frameCount == 0) progress(1.0);

  const auto& instrument = content.instrument;
  std::string summary = makeSummary(
      content.sampleSize, content.channels, content.sampleRate,
      instrument ? std::optional<std::int64_t>(instrument->baseNote) : std::nullopt,
      instrument ? instrument->detune : 0, static_cast<std::int64_t>(metadata.loops.size()),
      static_cast<std::int64_t>(content.markers.size()), 0);
  file.close();
  return {output.url, std::move(summary), std::move(warnings)};
}

}  // namespace corvana
