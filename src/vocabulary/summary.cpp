#include "vocabulary/summary.hpp"

#include "platform/texts.hpp"

namespace corvana {

std::string bitDepthText(std::int64_t bits) {
  return fillText(localised("%@-bit"), {decimalText(bits)});
}

std::string channelsText(std::int64_t count) {
  if (count == 1) return localised("mono");
  if (count == 2) return localised("stereo");
  return localisedCount("%ld channel", "%ld channels", count);
}

std::string makeSummary(std::int64_t bits, std::int64_t channels, std::uint32_t sampleRate,
                        std::optional<std::int64_t> rootKey, std::int64_t fineTune,
                        std::int64_t loopCount, std::int64_t markerCount,
                        std::int64_t cuePointCount) {
  std::string line = bitDepthText(bits);
  const auto add = [&line](const std::string& part) { line += ", " + part; };
  add(channelsText(channels));
  add(decimalText(std::int64_t{sampleRate}) + " Hz");
  if (rootKey) {
    add(fillText(localised("root key %@"), {decimalText(*rootKey)}));
    if (fineTune != 0) line += (fineTune > 0 ? " (+" : " (") + decimalText(fineTune) + " ct)";
  }
  if (loopCount >= 1) add(localisedCount("%ld loop", "%ld loops", loopCount));
  if (markerCount >= 1) add(localisedCount("%ld marker", "%ld markers", markerCount));
  if (cuePointCount >= 1) add(localisedCount("%ld cue point", "%ld cue points", cuePointCount));
  return line;
}

}  // namespace corvana
