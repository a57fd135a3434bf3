// Writes a WAV file: fmt, data, then cue, smpl and inst. Sample data is appended block by block.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "vocabulary/bytes.hpp"
#include "vocabulary/output_file.hpp"
#include "wav/wav_format.hpp"

namespace corvana {

/// The fmt body: plain PCM (16 bytes), or the extensible form (40 bytes) for a sample size that
/// does not fill its bytes and for more than 2 channels. `rate` in Hz, `sampleSize` in bits,
/// `blockAlign` in bytes.
ByteBuffer buildFormatChunk(std::uint16_t channels, std::uint32_t rate, std::uint16_t sampleSize,
                            std::uint16_t bytesPerSample, std::uint16_t blockAlign);

/// The cue body.
ByteBuffer buildCueChunk(const std::vector<CuePoint>& cuePoints);

/// The smpl body. `rate` in Hz, not 0; `pitchFraction` in 2^32ths of a semitone.
ByteBuffer buildSamplerChunk(std::uint32_t rate, std::uint32_t unityNote,
                             std::uint32_t pitchFraction, const std::vector<SampleLoop>& loops);

/// The inst body.
ByteBuffer buildInstrumentChunk(const InstrumentChunk& instrument);

/// The bodies of the chunks that follow the sample data.
struct TrailingChunks {
  ByteBuffer cue;                        ///< empty: no cue chunk
  std::optional<ByteBuffer> sampler;     ///< smpl
  std::optional<ByteBuffer> instrument;  ///< inst
};

/// Writes one file: open by constructing, append the announced data, finish.
class WavFileWriter {
 public:
  /// Creates the file with everything up to the first sample byte. `dataSize` in bytes. Fails
  /// with tooLarge before it touches the file system, and as OutputFile does.
  WavFileWriter(const OutputTarget& target, ByteView formatBody, std::uint64_t dataSize,
                const TrailingChunks& trailing);

  /// Where the sample data goes.
  OutputFile& file() { return file_; }

  /// Writes the pad byte and the trailing chunks and closes. Fails with writeFailed.
  void finish();

 private:
  ByteBuffer trailing_;  ///< pad byte and chunks behind the sample data
  OutputFile file_;
};

}  // namespace corvana
