// Writes the bytes of a WAV file: fmt, data, then cue, smpl and inst, then texts; fact ahead of
// data where samples are not integers.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "vocabulary/chunks.hpp"
#include "wav/wav_format.hpp"

namespace corvana {

/// What a WAV file holds beside its samples and their format.
struct WavMetadata {
  std::vector<CuePoint> cuePoints;  ///< empty: no cue chunk
  /// The inst chunk. The smpl chunk is written exactly when it is present, with the next three.
  std::optional<InstrumentChunk> instrument;
  std::vector<SampleLoop> loops;    ///< of the smpl chunk
  std::uint32_t unityNote = 0;      ///< MIDI note
  std::uint32_t pitchFraction = 0;  ///< in 2^32ths of a semitone above the note
  WavTexts texts = {};              ///< behind the chunks above
};

/// Everything of a WAV file but its samples. A sample takes as many bytes as its bits need.
struct WavContent {
  std::uint16_t channels = 0;    ///< a frame takes at most 65535 bytes
  std::uint16_t sampleSize = 0;  ///< bits, 1 to 32, or as the encoding has it
  std::uint32_t sampleRate = 0;  ///< Hz, not 0
  std::uint32_t frameCount = 0;  ///< whole frames of samples
  WavMetadata metadata = {};     ///< what the sampler needs
  /// What samples are.
  SampleEncoding encoding = SampleEncoding::integer;
};

/// The fmt body: plain PCM (16 bytes), other encodings (18 bytes), or the extensible form (40
/// bytes) for a sample size that does not fill its bytes and for more than 2 channels.
ByteBuffer buildFormatChunk(const WavContent& content);

/// The cue body.
ByteBuffer buildCueChunk(const std::vector<CuePoint>& cuePoints);

/// The smpl body.
ByteBuffer buildSamplerChunk(const WavContent& content);

/// The inst body.
ByteBuffer buildInstrumentChunk(const InstrumentChunk& instrument);

/// The file around its samples. Fails with tooLarge.
SurroundingBytes writeWav(const WavContent& content);

}  // namespace corvana
