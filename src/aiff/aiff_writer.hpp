// Writes the bytes of a plain AIFF file: COMM, MARK, INST, SSND, then texts.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "aiff/aiff_format.hpp"
#include "vocabulary/chunks.hpp"

namespace corvana {

/// Everything of an AIFF file but its samples.
struct AiffContent {
  std::uint16_t channels = 0;                     ///< at most 32767
  std::uint16_t sampleSize = 0;                   ///< bits, 1 to 32
  std::uint32_t sampleRate = 0;                   ///< Hz
  std::uint32_t frameCount = 0;                   ///< whole frames of samples
  std::vector<AiffMarker> markers = {};           ///< empty: no MARK chunk
  std::optional<AiffInstrument> instrument = {};  ///< absent: no INST chunk
  AiffTexts texts = {};                           ///< behind the samples
};

/// The file around its samples. A sample takes as many bytes as its bits need. Names and comments
/// are cut to the bytes that there is room for, not inside a character. Fails with tooLarge.
SurroundingBytes writeAiff(const AiffContent& content);

}  // namespace corvana
