#include "convert/cue_names.hpp"

#include <algorithm>
#include <map>
#include <string>

#include "convert/map_texts.hpp"
#include "convert/name_loss.hpp"
#include "vocabulary/text_format.hpp"

namespace corvana {
namespace {

/// Texts of WAV end at their first zero.
std::string nameOf(const AiffMarker& marker) {
  return marker.name.substr(0, marker.name.find('\0'));
}

class NamedCuePoints {
 public:
  NamedCuePoints(const AiffInfo& info, const AiffTextViews& texts, std::uint32_t framesUsed,
                 WavMetadata& metadata)
      : markers_(info.markers), framesUsed_(framesUsed), metadata_(metadata) {
    // The later of two markers with the same ID counts.
    for (const AiffMarker& marker : markers_)
      counting_[marker.id] = &marker;
    for (const AiffCommentView& comment : texts.comments)
      if (comment.marker != 0 && !isEmptyText(comment.text))
        comments_.emplace(comment.marker, comment.text);
  }

  /// `usualName` is what a marker without a name of its own is called in this place.
  void addOfLoop(std::int16_t markerID, const std::string& usualName) {
    const AiffMarker& marker = *counting_.at(markerID);
    if (!cueIDs_.try_emplace(markerID, 0).second) return;
    const std::string name = nameOf(marker);
    const bool isNamed = !name.empty() && name != usualName;
    if (!isNamed && !comments_.contains(markerID)) return;
    cueIDs_[markerID] = add(marker, isNamed ? name : "");
  }

  void addOthers() {
    for (const AiffMarker& marker : markers_) {
      const std::string name = nameOf(marker);
      const bool isOfLoop = cueIDs_.contains(marker.id);
      if (isOfLoop && counting_.at(marker.id) == &marker) continue;
      if (isOfLoop || marker.position > framesUsed_) {
        if (!name.empty()) lost_.add(marker.id);
        continue;
      }
      add(marker, name);
    }
  }

  /// Of a loop without one, an ID that no cue point has.
  void numberLoops(const std::vector<AiffLoop>& loops) {
    const std::size_t points = metadata_.cuePoints.size();
    for (std::size_t i = 0; i < loops.size(); ++i) {
      const std::uint32_t cueID = cueIDs_.at(loops[i].beginMarker);
      const std::size_t unused = i == 0 || points == 0 ? i : points + 1;
      metadata_.loops[i].cueID = cueID != 0 ? cueID : static_cast<std::uint32_t>(unused);
    }
  }

  void report(Warnings& warnings) {
    for (const auto& [marker, text] : comments_)
      lost_.add(marker);
    lost_.report(WarningKind::namesLeftOut, warnings);
  }

 private:
  std::uint32_t add(const AiffMarker& marker, const std::string& name) {
    const auto id = static_cast<std::uint32_t>(metadata_.cuePoints.size() + 1);
    metadata_.cuePoints.push_back({id, std::min(marker.position, framesUsed_)});
    if (!name.empty()) metadata_.texts.labels.push_back({id, name});
    const auto [first, last] = comments_.equal_range(marker.id);
    for (auto comment = first; comment != last; ++comment) {
      if (room_.take(comment->second.size()))
        metadata_.texts.notes.push_back({id, decodeAiffText(comment->second)});
      else
        lost_.add(marker.id);
    }
    comments_.erase(first, last);
    return id;
  }

  const std::vector<AiffMarker>& markers_;
  std::uint32_t framesUsed_;
  WavMetadata& metadata_;
  std::map<std::int16_t, const AiffMarker*> counting_;
  std::map<std::int16_t, std::uint32_t> cueIDs_;  ///< of the markers of loops; 0: none
  std::multimap<std::int16_t, ByteView> comments_;
  TextRoom room_;
  NameLoss lost_;
};

}  // namespace

void mapNamedMarkers(const AiffInfo& info, const AiffTextViews& texts,
                     const std::vector<AiffLoop>& loops, std::uint32_t framesUsed,
                     WavMetadata& metadata, Warnings& warnings) {
  NamedCuePoints points(info, texts, framesUsed, metadata);
  for (std::size_t i = 0; i < loops.size(); ++i) {
    const std::string name = "Loop " + decimalText(static_cast<std::int64_t>(i + 1));
    points.addOfLoop(loops[i].beginMarker, name + " Start");
    points.addOfLoop(loops[i].endMarker, name + " End");
  }
  points.addOthers();
  points.numberLoops(loops);
  points.report(warnings);
}

}  // namespace corvana
