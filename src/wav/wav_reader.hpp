// Reads a WAV file: strict about the sample format, lenient with the sampler metadata, whose
// damage never costs more than the damaged chunk.
#pragma once

#include "vocabulary/bytes.hpp"
#include "wav/wav_format.hpp"

namespace corvana {

/// Most records that are read of one smpl or cue chunk, far above what AIFF can take over
/// (32,766 markers); it keeps a hostile file of nothing but records from filling the memory.
inline constexpr std::size_t maxRecords = 250'000;

/// Reads the complete content of a file. Chunks may come in any order; of a chunk that occurs
/// twice the later one counts. Fails with a ConversionError.
WavInfo parseWav(ByteView file);

/// The fmt chunk. Fields as in WavInfo.
struct FormatChunk {
  std::uint16_t channels = 0;
  std::uint32_t sampleRate = 0;
  std::uint32_t bytesPerSample = 0;
  std::uint32_t bitsPerSample = 0;
};
/// Fails with badFormatChunk or unsupported.
FormatChunk parseFormatChunk(ByteView body);

/// The smpl chunk. Fields as in WavInfo.
struct SamplerChunk {
  std::uint32_t midiUnityNote = 0;
  std::uint32_t midiPitchFraction = 0;
  std::optional<std::vector<SampleLoop>> loops;
};
/// Never fails: a body below 36 bytes counts as absent, a loop count beyond the body is cut.
SamplerChunk parseSamplerChunk(ByteView body);

/// Never fails: a point count beyond the body is cut.
std::vector<CuePoint> parseCueChunk(ByteView body);

}  // namespace corvana
