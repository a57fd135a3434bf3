// What the rules promise of names and texts, where they are kept.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "verify/differences.hpp"
#include "vocabulary/bytes.hpp"

namespace corvana {

/// A chunk that has to be there, byte for byte.
struct PromisedChunk {
  std::string id;
  ByteBuffer body;
};

/// What there is of texts for an output, in bytes: 16 MiB, and each takes 16 bytes more than it
/// has.
class PromisedRoom {
 public:
  bool holds(std::size_t size) {
    const std::uint64_t with = used_ + size + 16;
    if (with > 16'777'216) return false;
    used_ = with;
    return true;
  }

 private:
  std::uint64_t used_ = 0;
};

/// Whether anything stands ahead of the first zero.
inline bool isThere(ByteView text) {
  return !text.empty() && text[0] != 0;
}

/// What a marker of AIFF can be called: at most 255 characters, "?" for those that it lacks.
std::string promisedMarkerName(const std::string& text);

using NumberedText = std::pair<std::int64_t, std::string>;

/// COMT, of marker IDs and UTF-8.
PromisedChunk promisedComments(const std::vector<NumberedText>& comments);
/// LIST adtl, of cue point IDs and UTF-8.
PromisedChunk promisedCueTexts(const std::vector<NumberedText>& labels,
                               const std::vector<NumberedText>& notes);

/// The texts of the file as a whole, of an AIFF file made of a WAV file, and the other way round.
std::vector<PromisedChunk> promisedTextsOfAiff(ByteView wav);
std::vector<PromisedChunk> promisedTextsOfWav(ByteView aiff);

/// Compares the chunks of the output that have one of the promised IDs, one after another.
void compareTexts(ByteView output, ByteOrder order, const std::vector<PromisedChunk>& promised,
                  Differences& differences);

}  // namespace corvana
