// The names that markers of an AIFF file get from the cue points of a WAV file.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "aiff/aiff_format.hpp"
#include "convert/map_texts.hpp"
#include "vocabulary/warnings.hpp"
#include "wav/wav_format.hpp"
#include "wav/wav_texts.hpp"

namespace corvana {

/// Marker IDs are positive signed 16-bit numbers; this one, the highest, is never given out.
inline constexpr std::size_t markerIDLimit = 32'767;

/// The labels and notes of a file, as far as they have not been given to a marker. Where a marker
/// has none of its own, its name tells what it is: "Loop 1 Start", "Cue 7".
class MarkerNames {
 public:
  MarkerNames(const WavTextViews& texts, const CuePointView& points);

  /// Names the begin marker of a loop by the cue point ID of the loop, unless the cue point of this
  /// ID lies elsewhere: then the ID is only a number.
  void nameLoop(const SampleLoop& loop, AiffMarker& begin);

  /// Adds the markers of cue points, at `frameCount` at most, behind those of the loops. A name
  /// goes to a marker that is there and has none, else to a marker of its own: only the same name
  /// in the same place says nothing new.
  void mapCuePoints(const CuePointView& points, std::uint32_t frameCount,
                    std::vector<AiffMarker>& markers);

  /// The notes that have been given to markers.
  std::vector<AiffComment> takeComments() { return std::move(comments_); }

  /// Says what cannot be kept as it is.
  void report(Warnings& warnings) const;

 private:
  struct Name {
    std::string text;        ///< that AIFF can hold, as UTF-8
    bool isChanged = false;  ///< characters are lacking
    bool isCut = false;
    bool isUsed = false;
  };
  static Name fitted(std::string_view label);
  static const std::string& use(Name& name);
  void giveNotes(std::uint32_t cueID, std::int16_t marker);

  std::map<std::uint32_t, Name> labels_;
  std::multimap<std::uint32_t, ByteView> notes_;
  std::map<std::uint32_t, std::uint32_t> positions_;  ///< of the cue points with either
  std::set<std::int16_t> named_;                      ///< IDs of markers of loops
  std::vector<AiffComment> comments_;
  std::vector<std::int64_t> cutNotes_;
  std::vector<std::int64_t> lostNotes_;
  std::int64_t unread_ = 0;  ///< labels and notes
  TextRoom room_;
};

}  // namespace corvana
