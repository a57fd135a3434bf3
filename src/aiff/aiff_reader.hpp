// Reads an AIFF or AIFF-C file: strict about the sample format, lenient with markers and
// instrument, whose damage never costs more than the damaged chunk.
#pragma once

#include <vector>

#include "aiff/aiff_format.hpp"
#include "vocabulary/bytes.hpp"

namespace corvana {

/// Reads the complete content of a file. Chunks may come in any order; of a chunk that occurs
/// twice the later one counts. `anyEncoding`: floating point, A-law, µ-law and the less common
/// orders of bytes are read as well. Fails with a ConversionError, also for a sample rate that is
/// not below `rateLimit` (Hz).
AiffInfo parseAiff(ByteView file, bool anyEncoding = false, double rateLimit = 4'000'000'000.0);
/// A rate in the place of `anyEncoding` would be taken for true.
AiffInfo parseAiff(ByteView file, double rateLimit) = delete;

/// The COMM chunk. Fields as in AiffInfo.
struct CommonChunk {
  std::uint16_t channels = 0;
  std::uint32_t frameCount = 0;
  SampleEncoding encoding = SampleEncoding::integer;
  std::uint16_t sampleSize = 0;
  double sampleRate = 0;
  bool littleEndian = false;
  bool isUnsigned = false;
};
/// `isAIFC`: the form type is "AIFC", so a compression type follows. Fails with missingComm or
/// unsupported.
CommonChunk parseCommonChunk(ByteView body, bool isAIFC, bool anyEncoding, double rateLimit);

/// Never fails: a marker count beyond the body is cut, a name cut by its end is used as it is.
std::vector<AiffMarker> parseMarkerChunk(ByteView body);

/// The INST chunk; a body below 20 bytes counts as absent.
std::optional<AiffInstrument> parseAiffInstrument(ByteView body);

}  // namespace corvana
