// Maps the texts of a file as a whole: title, author, copyright, comments, an ID3 tag.
#pragma once

#include "aiff/aiff_texts.hpp"
#include "convert/left_out.hpp"
#include "wav/wav_texts.hpp"

namespace corvana {

/// How much of texts, in bytes, an output takes from its input: nobody writes so much, and it has
/// to fit into the memory.
class TextRoom {
 public:
  /// Whether so many bytes still fit, which then are taken.
  bool take(std::size_t size) {
    constexpr std::size_t overhead = 16;
    if (left_ < overhead || left_ - overhead < size) return false;
    left_ -= overhead + size;
    return true;
  }

 private:
  std::size_t left_ = std::size_t{16} << 20;
};

/// Whether nothing stands ahead of the first zero.
inline bool isEmptyText(ByteView text) {
  return text.empty() || text.front() == 0;
}

/// Whether AIFF has a place for an INFO text of this ID.
bool hasCounterpart(std::string_view infoID);

/// Adds texts and tag. Of a text that AIFF has once, the last one counts. What there is no room for
/// is left out.
void mapTexts(const WavTextViews& wav, AiffTexts& aiff, LeftOutChunks& leftOut);
/// The same the other way round. Comments that belong to a marker are not texts of the file.
void mapTexts(const AiffTextViews& aiff, WavTexts& wav, LeftOutChunks& leftOut);

}  // namespace corvana
