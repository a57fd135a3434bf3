// Writes the bytes of an AIFF file: COMM, MARK, INST, SSND, then texts. Samples that are not
// integers make it AIFF-C, with FVER ahead of the others.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "aiff/aiff_format.hpp"
#include "vocabulary/chunks.hpp"

namespace corvana {

/// Everything of an AIFF file but its samples.
struct AiffContent {
  std::uint16_t channels = 0;    ///< at most 32767
  std::uint16_t sampleSize = 0;  ///< bits of a stored sample: 1 to 32, or as the encoding has it
  std::uint32_t sampleRate = 0;  ///< Hz
  std::uint32_t frameCount = 0;  ///< whole frames of samples
  std::vector<AiffMarker> markers = {};               ///< empty: no MARK chunk
  std::optional<AiffInstrument> instrument = {};      ///< absent: no INST chunk
  SampleEncoding encoding = SampleEncoding::integer;  ///< what samples are
  AiffTexts texts = {};                               ///< behind the samples

  bool isCompressed() const { return encoding != SampleEncoding::integer; }  ///< AIFF-C
};

/// The file around its samples. A sample takes as many bytes as its bits need. Names and comments
/// are cut to the bytes that there is room for, not inside a character. Fails with tooLarge.
SurroundingBytes writeAiff(const AiffContent& content);

}  // namespace corvana
