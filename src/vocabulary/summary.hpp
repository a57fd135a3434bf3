// The one-line summary of a converted file, and the two texts of it that the readers use as the
// detail of an error as well.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace corvana {

/// "16-bit"
std::string bitDepthText(std::int64_t bits);

/// "mono", "stereo", or "6 channels" for any other number, 0 and negative ones included.
std::string channelsText(std::int64_t count);

/// "16-bit, stereo, 44100 Hz, root key 60 (+12 ct), 2 loops, 4 markers". `sampleRate` in Hz,
/// `rootKey` a MIDI note number (absent without instrument data), `fineTune` in cents. Counts
/// of 0 are left out.
std::string makeSummary(std::int64_t bits, std::int64_t channels, std::uint32_t sampleRate,
                        std::optional<std::int64_t> rootKey, std::int64_t fineTune,
                        std::int64_t loopCount, std::int64_t markerCount,
                        std::int64_t cuePointCount);

}  // namespace corvana
