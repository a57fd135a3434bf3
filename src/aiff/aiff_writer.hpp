// Writes a plain AIFF file: COMM, MARK, INST, SSND.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "aiff/aiff_format.hpp"
#include "vocabulary/output_file.hpp"
#include "vocabulary/results.hpp"
#include "vocabulary/sample_blocks.hpp"

namespace corvana {

/// Everything of an AIFF file but its samples.
struct AiffContent {
  std::uint16_t channels = 0;    ///< at most 32767
  std::uint16_t sampleSize = 0;  ///< bits, 1 to 32
  std::uint32_t sampleRate = 0;  ///< Hz
  std::vector<AiffMarker> markers;
  std::optional<AiffInstrument> instrument;
};

/// Writes the file: its header with the final sizes, the sample data block by block, the pad
/// byte. Fails with tooLarge before it touches the file system, and as OutputFile does. The
/// file comes back open; the caller closes it.
OutputFile writeAiff(const OutputTarget& target, const AiffContent& content,
                     const SampleLayout& layout, const FillBlock& fillBlock,
                     const ProgressHandler& progress);

}  // namespace corvana
