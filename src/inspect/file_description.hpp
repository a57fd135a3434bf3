// What a WAV or AIFF file holds, whether it can be converted or not.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "inspect/chunk_list.hpp"
#include "vocabulary/warnings.hpp"

namespace corvana {

/// How samples are stored.
enum class SampleKind { unknown, integer, floatingPoint, aLaw, muLaw, compressed };

/// The fmt or COMM chunk. Everything as the file states it, 0 where it states nothing usable.
struct SoundFormat {
  SampleKind kind = SampleKind::unknown;  ///< what the bits of a sample mean
  std::uint16_t formatTag = 0;            ///< WAV: of the sub-format in the extensible form
  std::string compressionType = {};       ///< AIFF-C: four characters
  std::string compressionName = {};       ///< AIFF-C
  std::uint32_t channels = 0;             ///< samples in a frame
  std::uint32_t bits = 0;                 ///< that count, per sample
  double sampleRate = 0;                  ///< Hz
  std::uint32_t sampleBytes = 0;  ///< that a sample takes; 0 where samples are not of equal size
  ByteOrder order = ByteOrder::little;  ///< of the bytes of a sample
  bool isUnsigned = false;              ///< the middle of the range is silence

  /// Bytes of a frame, 0 where samples are not of equal size.
  std::uint64_t frameBytes() const { return std::uint64_t{channels} * sampleBytes; }
};

/// How a loop plays.
enum class LoopKind { forward, alternating, backward, unknown };

/// A loop of the smpl or INST chunk that is not switched off.
struct LoopDescription {
  std::optional<LoopRole> role;       ///< AIFF
  std::int64_t number = 0;            ///< WAV: counted from 1
  LoopKind kind = LoopKind::forward;  ///< what `type` means
  std::int64_t type = 0;              ///< as in the file: loop type or play mode
  std::optional<std::int64_t> start;  ///< first frame; absent where the marker is missing
  std::optional<std::int64_t> end;    ///< last frame, inclusive; absent likewise
  std::uint32_t playCount = 0;        ///< WAV; 0 = indefinitely
  std::uint32_t cueID = 0;            ///< WAV
  std::uint32_t fraction = 0;         ///< WAV: of a frame, in 2^32ths
  std::int16_t beginMarker = 0;       ///< AIFF
  std::int16_t endMarker = 0;         ///< AIFF
};

/// A marker or cue point, with what a LIST chunk of the type adtl says of it.
struct MarkerDescription {
  std::int64_t id = 0;                       ///< not always unique
  std::uint32_t position = 0;                ///< the frame that follows it
  std::string name = {};                     ///< UTF-8
  std::string note = {};                     ///< a comment
  std::optional<std::uint32_t> length = {};  ///< of the stretch that it begins, in frames
};

/// The tuning in the smpl chunk.
struct SamplerTuning {
  std::uint32_t unityNote = 0;      ///< MIDI note
  std::uint32_t pitchFraction = 0;  ///< that the recording lies above it, in 2^32ths of a semitone

  /// Cents that the recording lies above the unity note.
  double cents() const { return 100.0 * pitchFraction / 4294967296.0; }
  double pitch() const { return 100.0 * unityNote + cents(); }  ///< cents above note 0
};

/// The inst or INST chunk without its loops.
struct InstrumentDescription {
  int baseNote = 0;      ///< MIDI note of the recording
  int detune = 0;        ///< cents, the correction to apply on playback
  int lowNote = 0;       ///< MIDI note, the lowest key to play it with
  int highNote = 0;      ///< MIDI note, the highest key
  int lowVelocity = 0;   ///< MIDI velocity
  int highVelocity = 0;  ///< MIDI velocity
  int gain = 0;          ///< dB

  double pitch() const { return 100.0 * baseNote - detune; }  ///< of the recording, as above
};

/// The key nearest to the recording.
struct RootKey {
  std::int64_t note = 0;  ///< MIDI note
  double cents = 0;       ///< the correction to apply on playback, in hundredths at the finest
};

/// A text in its own chunk.
struct TextDescription {
  std::string chunk;  ///< four characters, of the inner chunk in a LIST
  std::string text;   ///< UTF-8, lines end with a line feed
};

/// Everything that describeFile finds.
struct FileDescription {
  std::uint64_t fileSize = 0;                   ///< bytes
  ChunkList chunks;                             ///< all of them, known or not
  std::optional<SoundFormat> format;            ///< absent without a usable fmt or COMM chunk
  bool hasSamples = false;                      ///< a data or SSND chunk
  std::uint64_t dataOffset = 0;                 ///< of the first sample byte
  std::uint64_t dataSize = 0;                   ///< sample bytes that are there
  std::optional<std::uint64_t> declaredFrames;  ///< COMM or fact
  std::optional<std::uint64_t> frames;          ///< that are there, as far as that can be told

  // Lists hold the first maxListed entries, counts speak of all.
  std::vector<LoopDescription> loops;               ///< WAV: in file order; AIFF: sustain, release
  std::uint64_t loopCount = 0;                      ///< of all loops that are not switched off
  std::vector<MarkerDescription> markers;           ///< AIFF
  std::vector<MarkerDescription> cuePoints;         ///< WAV
  std::uint64_t markerCount = 0;                    ///< of either
  std::vector<std::int64_t> strayLabels;            ///< IDs with a text but without a cue point
  std::optional<SamplerTuning> sampler;             ///< WAV: absent without a usable smpl chunk
  std::optional<InstrumentDescription> instrument;  ///< absent without a usable inst or INST chunk
  std::vector<TextDescription> texts;               ///< the first maxTexts
  std::uint64_t textCount = 0;                      ///< of all texts

  /// AIFF-C too.
  bool isAIFF() const {
    return chunks.container == Container::aiff || chunks.container == Container::aifc;
  }
  /// What a sampler makes of the chunks; absent without either.
  std::optional<RootKey> rootKey() const;
  /// Whether smpl and inst speak of different pitches, by more than rounding explains.
  bool tuningsDisagree() const;
  double seconds() const;  ///< 0 where unknown
};

/// Most texts that are kept of a file.
inline constexpr std::size_t maxTexts = 1'000;
/// Most characters that are kept of a text, in bytes of UTF-8.
inline constexpr std::size_t maxTextSize = 4'096;

/// Reads the body of a fmt or COMM chunk; absent where it is too short.
std::optional<SoundFormat> describeFormatChunk(ByteView body, Container container);

/// Reads whatever can be read of the complete content of a file. Never fails.
FileDescription describeFile(ByteView file);

}  // namespace corvana
