#include "convert/original.hpp"

#include <algorithm>
#include <cmath>

#include "aiff/aiff_reader.hpp"
#include "convert/map_aiff_to_wav.hpp"
#include "convert/map_wav_to_aiff.hpp"
#include "convert/summary_key.hpp"
#include "vocabulary/chunks.hpp"
#include "wav/wav_reader.hpp"
#include "wav/wav_texts.hpp"

namespace corvana {
namespace {

/// The original as if its samples had been cut out of their chunk. Absent where they are not in
/// one.
std::optional<ByteBuffer> withoutSamples(const Capsule& capsule, ByteOrder order) {
  const std::uint64_t sampleBytes = capsule.sampleBytes();
  ByteBuffer file;
  file.reserve(capsule.prefix.size() + 1 + capsule.suffix.size());
  appendBytes(file, capsule.prefix);
  if (sampleBytes > 0) {
    std::optional<Chunk> last;
    walkChunks(file, order, [&](const Chunk& chunk) { last = chunk; });
    if (!last || last->declaredSize < file.size() - last->bodyOffset + sampleBytes)
      return std::nullopt;
    // The pad byte behind the chunk stays one.
    const std::uint64_t isOdd = sampleBytes % 2;
    ByteBuffer size;
    appendInteger(size, static_cast<std::uint32_t>(last->declaredSize - sampleBytes + isOdd),
                  order);
    std::copy(size.begin(), size.end(), file.data() + last->bodyOffset - size.size());
    file.resize(file.size() + static_cast<std::size_t>(isOdd));
  }
  appendBytes(file, capsule.suffix);
  return file;
}

std::optional<Summary> summaryOfWav(const Capsule& capsule) {
  const auto file = withoutSamples(capsule, orderOfWav(capsule.prefix));
  if (!file) return std::nullopt;
  const WavInfo info = parseWav(*file, true);
  if (info.dataOffset != capsule.prefix.size() || info.channels != capsule.channels ||
      info.bytesPerSample != capsule.conversion.sourceWidth)
    return std::nullopt;
  Summary summary{.bits = info.bitsPerSample,
                  .channels = info.channels,
                  .sampleRate = info.sampleRate,
                  .loopCount = static_cast<std::int64_t>(info.loops ? info.loops->size() : 0),
                  .cuePointCount = static_cast<std::int64_t>(info.cuePoints.size()),
                  .encoding = info.encoding};
  Warnings ignored;
  setKey(summary, mapWavMetadata(info, capsule.frameCount, {}, ignored).instrument);
  return summary;
}

std::optional<Summary> summaryOfAiff(const Capsule& capsule) {
  const auto file = withoutSamples(capsule, ByteOrder::big);
  if (!file) return std::nullopt;
  const AiffInfo info = parseAiff(*file, true);
  if (info.soundOffset != capsule.prefix.size() || info.channels != capsule.channels ||
      bytesFor(info.sampleSize) != capsule.conversion.sourceWidth)
    return std::nullopt;
  Warnings ignored;
  const WavMetadata metadata = mapLoopsAndMarkers(info, capsule.frameCount, {}, ignored);
  Summary summary{.bits = info.sampleSize,
                  .channels = info.channels,
                  .sampleRate = static_cast<std::uint32_t>(std::round(info.sampleRate)),
                  .loopCount = static_cast<std::int64_t>(metadata.loops.size()),
                  .markerCount = static_cast<std::int64_t>(info.markers.size()),
                  .encoding = info.encoding};
  setKey(summary, metadata.instrument);
  return summary;
}

}  // namespace

std::optional<Summary> summaryOfOriginal(const Capsule& capsule, bool isWAV) {
  return isWAV ? summaryOfWav(capsule) : summaryOfAiff(capsule);
}

}  // namespace corvana
