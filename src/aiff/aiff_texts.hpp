// The texts of an AIFF file beside the names of its markers.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "vocabulary/bytes.hpp"

namespace corvana {

/// Most texts of each kind that are read.
inline constexpr std::size_t maxAiffTexts = 65'536;

/// A comment of a COMT chunk, still in the bytes of the file.
struct AiffCommentView {
  std::int16_t marker = 0;  ///< ID of the one that it belongs to; 0: none
  ByteView text;
};

/// A text chunk, still in the bytes of the file.
struct AiffTextView {
  std::string_view id;  ///< NAME, AUTH, (c) or ANNO
  ByteView text;
};

/// What findAiffTexts finds, in file order. Refers to the bytes of the file.
struct AiffTextViews {
  std::vector<AiffCommentView> comments;
  std::vector<AiffTextView> texts;
  bool hasFurtherComments = false;  ///< that are not read
  bool hasFurtherTexts = false;     ///< likewise
  ByteView id3;                     ///< the tag, of the last such chunk that has one
};

/// Looks at the complete content of a file. Never fails; what is cut is used as it is.
AiffTextViews findAiffTexts(ByteView file);

/// The comments of a COMT chunk, at most 65535.
std::vector<AiffCommentView> parseCommentChunk(ByteView body);

/// The text up to its first zero as UTF-8: it is taken for UTF-8, or for Mac OS Roman where it is
/// none.
std::string decodeAiffText(ByteView bytes);

/// The bytes that decodeAiffText makes `text` of, at most `most`, without a part of a character:
/// Mac OS Roman, or UTF-8 where that lacks a character or would be mistaken for UTF-8. Of Mac OS
/// Roman, a letter with the accent behind it comes back as one character.
std::string encodeAiffText(std::string_view text, std::size_t most);

/// Whether a chunk of this ID holds a text of the file as a whole.
bool isTextOfAiff(std::string_view id);

}  // namespace corvana
