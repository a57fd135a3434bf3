// The names and texts of a WAV file: in LIST chunks and in an ID3 tag.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "vocabulary/bytes.hpp"

namespace corvana {

/// Most texts of each kind that are read.
inline constexpr std::size_t maxWavTexts = 65'536;

/// A text of a cue point, still in the bytes of the file.
struct CueTextView {
  std::uint32_t cueID = 0;
  ByteView text;
};

/// A text of the file, still in its bytes.
struct InfoTextView {
  std::string_view id;  ///< four characters
  ByteView text;
};

/// What findWavTexts finds, in file order. Refers to the bytes of the file.
struct WavTextViews {
  std::vector<CueTextView> labels;     ///< labl
  std::vector<CueTextView> notes;      ///< note
  std::vector<CueTextView> stretches;  ///< the texts of ltxt
  std::vector<InfoTextView> info;      ///< LIST INFO
  std::int64_t furtherCueTexts = 0;    ///< that are not read, of cue points
  std::int64_t furtherInfo = 0;        ///< the same of the file
  ByteView id3;                        ///< the tag, of the last such chunk that has one
};

/// Looks at the complete content of a file. Never fails; what is cut or nested in further lists is
/// passed over.
WavTextViews findWavTexts(ByteView file);

/// Big of a RIFX file.
ByteOrder orderOfWav(ByteView file);

/// The text up to its first zero as UTF-8: it is taken for UTF-8, or for Latin-1 where it is none.
std::string decodeWavText(ByteView bytes);

/// U+FFFD stands for bytes that are no character.
std::string decodeLatin1(ByteView bytes);

/// Whether a chunk of this ID holds an ID3 tag.
bool isID3(std::string_view id);

}  // namespace corvana
