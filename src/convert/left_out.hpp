// Which chunks of an input its output has nothing of.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "convert/conversion_plan.hpp"
#include "vocabulary/bytes.hpp"
#include "vocabulary/conversion_options.hpp"
#include "wav/wav_texts.hpp"

namespace corvana {

/// Most IDs that are named of a file.
inline constexpr std::size_t maxLeftOut = 1'000;

/// Collects IDs, each once, in the order in which they come.
class LeftOutChunks {
 public:
  /// "LIST INFO" and "LIST adtl" for a whole list, else four characters, in a list or not.
  void add(std::string_view id);
  const std::vector<std::string>& ids() const { return ids_; }  ///< readable, at most maxLeftOut

 private:
  std::vector<std::string> ids_;
  std::unordered_set<std::string> seen_;
};

/// Adds what conversions have no place for: neither chunks that only fill space, nor those that
/// only say once more how long the sound is, or which version a format has, nor the capsule
/// whose body is there, if any. `file` is the complete content of a WAV file.
void addLeftOutOfWav(ByteView file, const ConversionOptions& options, LeftOutChunks& leftOut,
                     std::uint64_t capsuleOffset = 0);
/// The same of an AIFF or AIFF-C file.
void addLeftOutOfAiff(ByteView file, const ConversionOptions& options, LeftOutChunks& leftOut,
                      std::uint64_t capsuleOffset = 0);

/// Adds `labl` where a cue point has several names, of which the last one is kept.
void addEarlierLabels(const WavTextViews& texts, LeftOutChunks& leftOut);

/// Puts it into the plan, with a warning where names or texts are kept, or an original comes back.
void setLeftOut(const LeftOutChunks& leftOut, const ConversionOptions& options,
                ConversionPlan& plan);

}  // namespace corvana
