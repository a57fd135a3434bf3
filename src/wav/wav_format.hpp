// The records of a WAV file: sample format, loops, cue points, instrument.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "vocabulary/bytes.hpp"
#include "vocabulary/sample_encoding.hpp"
#include "wav/record_view.hpp"

namespace corvana {

/// One loop of the smpl chunk.
struct SampleLoop {
  std::uint32_t cueID = 0;      ///< of the cue point that names it, where one does
  std::uint32_t type = 0;       ///< a LoopType, or unknown
  std::uint32_t start = 0;      ///< first frame of the loop
  std::uint32_t end = 0;        ///< last frame of the loop (inclusive)
  std::uint32_t playCount = 0;  ///< 0 = indefinitely
};

/// The known values of SampleLoop::type.
namespace loop_type {
inline constexpr std::uint32_t forward = 0;      ///< from start to end, again and again
inline constexpr std::uint32_t alternating = 1;  ///< to and fro
inline constexpr std::uint32_t backward = 2;     ///< from end to start
}  // namespace loop_type

/// One point of the cue chunk.
struct CuePoint {
  std::uint32_t id = 0;        ///< loops and texts refer to it
  std::uint32_t position = 0;  ///< frames
};

/// The inst chunk, unchanged from the file.
struct InstrumentChunk {
  std::uint8_t unshiftedNote = 0;  ///< MIDI note of the recording
  std::int8_t fineTune = 0;        ///< cents
  std::int8_t gain = 0;            ///< dB
  std::uint8_t lowNote = 0;        ///< MIDI note, the lowest key to play it with
  std::uint8_t highNote = 0;       ///< MIDI note, the highest key
  std::uint8_t lowVelocity = 0;    ///< MIDI velocity, 1 to 127 in well-formed files
  std::uint8_t highVelocity = 0;   ///< MIDI velocity
};

/// A text that belongs to a cue point, or to the loops with this cue point ID.
struct CueText {
  std::uint32_t cueID = 0;  ///< not always that of a cue point
  std::string text = {};    ///< UTF-8
};

/// A text of the file as a whole.
struct InfoText {
  std::string id = {};    ///< four characters, INAM for example
  std::string text = {};  ///< UTF-8
};

/// The names and texts of a WAV file.
struct WavTexts {
  std::vector<CueText> labels = {};  ///< names; labl chunks in a LIST of the type adtl
  std::vector<CueText> notes = {};   ///< note chunks in the same
  std::vector<InfoText> info = {};   ///< chunks in a LIST of the type INFO
  ByteBuffer id3 = {};               ///< an ID3 tag; empty: none
};

/// Sizes of the chunk layouts, in bytes.
namespace wav_layout {
inline constexpr std::size_t formatSize = 16;
inline constexpr std::size_t extendedFormatSize = 18;  ///< with an empty extension
inline constexpr std::size_t extensibleFormatSize = 40;
inline constexpr std::size_t samplerHeaderSize = 36;
inline constexpr std::size_t loopSize = 24;
inline constexpr std::size_t cueHeaderSize = 4;
inline constexpr std::size_t cuePointSize = 24;
inline constexpr std::size_t listTypeSize = 4;
inline constexpr std::size_t cueTextOffset = 4;       ///< behind the cue point ID
inline constexpr std::size_t stretchTextOffset = 20;  ///< ID, length, purpose, country, … code page
inline constexpr std::size_t instrumentSize = 7;
}  // namespace wav_layout

/// One record of a smpl chunk; `record` holds its bytes.
SampleLoop decodeLoop(ByteView record, ByteOrder order);
/// One record of a cue chunk; `record` holds its bytes.
CuePoint decodeCuePoint(ByteView record, ByteOrder order);

/// The loops of a smpl chunk, in file order.
using SampleLoopView = RecordView<SampleLoop, wav_layout::loopSize, decodeLoop>;
/// The points of a cue chunk, in file order.
using CuePointView = RecordView<CuePoint, wav_layout::cuePointSize, decodeCuePoint>;

/// What the reader finds in a WAV file, to whose bytes it refers.
struct WavInfo {
  std::uint16_t channels = 0;    ///< 1 to 65535
  std::uint32_t sampleRate = 0;  ///< Hz, never 0
  /// What samples are; others than integers only where the reader was asked for them.
  SampleEncoding encoding = SampleEncoding::integer;
  ByteOrder order = ByteOrder::little;  ///< of all numbers; big: a RIFX file, likewise
  /// Bytes a sample occupies in the file: 1 to 4, or 8 of floating point.
  std::uint32_t bytesPerSample = 0;
  std::uint32_t bitsPerSample = 0;      ///< effective bits, 1 to 8 × bytesPerSample
  std::size_t dataOffset = 0;           ///< of the first sample byte in the file
  std::uint64_t dataSize = 0;           ///< sample bytes that are there
  std::uint32_t midiUnityNote = 0;      ///< MIDI note of the recording
  std::uint32_t midiPitchFraction = 0;  ///< fraction of a semitone above the note, of 2^32
  /// Present, possibly empty, exactly when the file has a usable smpl chunk.
  std::optional<SampleLoopView> loops;
  std::optional<InstrumentChunk> instrument;  ///< absent without a usable inst chunk
  CuePointView cuePoints;                     ///< in file order, duplicates included
};

/// Values of the format tag and of the extensible form's sub-format code.
namespace format_tag {
inline constexpr std::uint16_t pcm = 1;              ///< integers
inline constexpr std::uint16_t floatingPoint = 3;    ///< of 32 or 64 bits
inline constexpr std::uint16_t aLaw = 6;             ///< logarithmic
inline constexpr std::uint16_t muLaw = 7;            ///< logarithmic
inline constexpr std::uint16_t extensible = 0xFFFE;  ///< the sub-format code says what it is
}  // namespace format_tag

}  // namespace corvana
