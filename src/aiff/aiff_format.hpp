// The records of an AIFF or AIFF-C file: sample format, markers, instrument with its two loops.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "vocabulary/bytes.hpp"
#include "vocabulary/sample_encoding.hpp"

namespace corvana {

/// One marker of the MARK chunk. It lies between two frames.
struct AiffMarker {
  std::int16_t id = 0;         ///< loops refer to it; positive in well-formed files
  std::uint32_t position = 0;  ///< the frame that follows the marker
  std::string name;            ///< UTF-8 (Mac OS Roman in the file)
};

/// One loop of the INST chunk.
struct AiffLoop {
  std::int16_t playMode = 0;     ///< a play_mode, or unknown
  std::int16_t beginMarker = 0;  ///< marker ID
  std::int16_t endMarker = 0;    ///< marker ID; the loop ends before the frame at this marker
};

/// The known values of AiffLoop::playMode.
namespace play_mode {
inline constexpr std::int16_t none = 0;             ///< the loop is switched off
inline constexpr std::int16_t forward = 1;          ///< from begin to end, again and again
inline constexpr std::int16_t forwardBackward = 2;  ///< to and fro
}  // namespace play_mode

/// The INST chunk, unchanged from the file.
struct AiffInstrument {
  std::int8_t baseNote = 0;      ///< MIDI note of the recording
  std::int8_t detune = 0;        ///< cents, the correction to apply on playback
  std::int8_t lowNote = 0;       ///< MIDI note, the lowest key to play it with
  std::int8_t highNote = 0;      ///< MIDI note, the highest key
  std::int8_t lowVelocity = 0;   ///< MIDI velocity, 1 to 127 in well-formed files
  std::int8_t highVelocity = 0;  ///< MIDI velocity
  std::int16_t gain = 0;         ///< dB
  AiffLoop sustainLoop = {};     ///< played while the key is held
  AiffLoop releaseLoop = {};     ///< played once it is released
};

/// What the reader finds in an AIFF file.
struct AiffInfo {
  std::uint16_t channels = 0;    ///< 1 to 32767
  std::uint32_t frameCount = 0;  ///< as declared; the sound data may hold fewer
  /// What samples are; others than integers only where the reader was asked for them.
  SampleEncoding encoding = SampleEncoding::integer;
  std::uint16_t sampleSize = 0;              ///< bits: 1 to 32, or 64 of floating point
  double sampleRate = 0;                     ///< Hz, at least 1 and below 4,000,000,000
  bool littleEndian = false;                 ///< compression type "sowt", "42ni" or "23ni"
  bool isUnsigned = false;                   ///< compression type "raw "
  std::size_t soundOffset = 0;               ///< of the first sample byte in the file
  std::uint64_t soundSize = 0;               ///< sample bytes that are there
  std::vector<AiffMarker> markers;           ///< in file order, duplicate IDs included
  std::optional<AiffInstrument> instrument;  ///< absent without a usable INST chunk
};

/// A comment of the COMT chunk.
struct AiffComment {
  std::int16_t marker = 0;  ///< ID of the one that it belongs to
  std::string text = {};    ///< UTF-8
};

/// A text chunk of the file as a whole.
struct AiffText {
  std::string id = {};    ///< four characters: NAME, AUTH, (c) or ANNO
  std::string text = {};  ///< UTF-8
};

/// The texts of an AIFF file beside the names of its markers.
struct AiffTexts {
  std::vector<AiffComment> comments = {};  ///< at most 65535; empty: no COMT chunk
  std::vector<AiffText> texts = {};        ///< one chunk each
  ByteBuffer id3 = {};                     ///< an ID3 tag; empty: none
};

/// Sizes of the chunk layouts, in bytes.
namespace aiff_layout {
inline constexpr std::size_t commonSize = 18;
inline constexpr std::size_t compressedCommonSize = 22;
inline constexpr std::size_t soundHeaderSize = 8;
inline constexpr std::size_t markerCountSize = 2;
inline constexpr std::size_t markerHeaderSize = 7;  ///< ID, position, length of the name
inline constexpr std::size_t instrumentSize = 20;
inline constexpr std::size_t commentCountSize = 2;
inline constexpr std::size_t commentHeaderSize = 8;  ///< time stamp, marker ID, length of the text
inline constexpr std::size_t longestName = 255;      ///< of a marker
inline constexpr std::size_t longestComment = 65'535;
}  // namespace aiff_layout

}  // namespace corvana
