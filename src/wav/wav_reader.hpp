// Reads a WAV file: strict about the sample format, lenient with the sampler metadata, whose
// damage never costs more than the damaged chunk.
#pragma once

#include "vocabulary/bytes.hpp"
#include "wav/wav_format.hpp"

namespace corvana {

/// Reads the complete content of a file, which has to outlive what is made of it. Chunks may come
/// in any order; of a chunk that occurs twice the later one counts. `anyEncoding`: floating point,
/// A-law, µ-law and RIFX files are read as well. Fails with a ConversionError.
WavInfo parseWav(ByteView file, bool anyEncoding = false);

/// The fmt chunk. Fields as in WavInfo.
struct FormatChunk {
  std::uint16_t channels = 0;
  std::uint32_t sampleRate = 0;
  SampleEncoding encoding = SampleEncoding::integer;
  std::uint32_t bytesPerSample = 0;
  std::uint32_t bitsPerSample = 0;
};
/// Fails with badFormatChunk or unsupported.
FormatChunk parseFormatChunk(ByteView body, ByteOrder order = ByteOrder::little,
                             bool anyEncoding = false);

/// The format code of an extensible fmt chunk, `body`: the number that its identifier starts with.
std::uint16_t subFormatOf(ByteView body, ByteOrder order);

/// The smpl chunk. Fields as in WavInfo.
struct SamplerChunk {
  std::uint32_t midiUnityNote = 0;
  std::uint32_t midiPitchFraction = 0;
  std::optional<SampleLoopView> loops;
};
/// Never fails: a body below 36 bytes counts as absent, a loop count beyond the body is cut.
SamplerChunk parseSamplerChunk(ByteView body, ByteOrder order = ByteOrder::little);

/// Never fails: a point count beyond the body is cut.
CuePointView parseCueChunk(ByteView body, ByteOrder order = ByteOrder::little);

/// The inst chunk; a body below 7 bytes counts as absent.
std::optional<InstrumentChunk> parseInstrumentChunk(ByteView body);

}  // namespace corvana
