#include "convert/marker_names.hpp"

#include <limits>
#include <utility>

#include "aiff/mac_roman.hpp"
#include "convert/name_loss.hpp"
#include "vocabulary/text_format.hpp"
#include "vocabulary/unicode.hpp"

namespace corvana {

MarkerNames::MarkerNames(const WavTextViews& texts, const CuePointView& points)
    : unread_(texts.furtherCueTexts) {
  for (const CueTextView& label : texts.labels)
    if (!isEmptyText(label.text)) labels_[label.cueID] = fitted(decodeWavText(label.text));
  for (const CueTextView& stretch : texts.stretches)
    if (!isEmptyText(stretch.text) && !labels_.contains(stretch.cueID))
      labels_.emplace(stretch.cueID, fitted(decodeWavText(stretch.text)));
  for (const CueTextView& note : texts.notes)
    if (!isEmptyText(note.text)) notes_.emplace(note.cueID, note.text);
  if (labels_.empty() && notes_.empty()) return;
  for (const CuePoint point : points)
    if (labels_.contains(point.id) || notes_.contains(point.id))
      positions_.try_emplace(point.id, point.position);
}

MarkerNames::Name MarkerNames::fitted(std::string_view label) {
  Name name;
  const std::string composed = composedForMacRoman(label);
  std::string_view text = composed;
  for (std::size_t count = 0; !text.empty(); ++count) {
    name.isCut = count == aiff_layout::longestName;
    if (name.isCut) break;
    const std::string_view character = text.substr(0, utf8SequenceLength(text));
    if (macRomanByte(utf8Scalar(character))) {
      name.text += character;
    } else {
      name.text += '?';
      name.isChanged = true;
    }
    text.remove_prefix(character.size());
  }
  return name;
}

const std::string& MarkerNames::use(Name& name) {
  name.isUsed = true;
  return name.text;
}

void MarkerNames::giveNotes(std::uint32_t cueID, std::int16_t marker) {
  const auto [first, last] = notes_.equal_range(cueID);
  for (auto note = first; note != last; ++note) {
    if (comments_.size() == std::numeric_limits<std::uint16_t>::max() ||
        !room_.take(note->second.size())) {
      lostNotes_.push_back(cueID);
      continue;
    }
    comments_.push_back({marker, decodeWavText(note->second)});
    const std::string& text = comments_.back().text;
    if (encodeAiffText(text, text.size()).size() > aiff_layout::longestComment)
      cutNotes_.push_back(cueID);
  }
  notes_.erase(first, last);
}

void MarkerNames::nameLoop(const SampleLoop& loop, AiffMarker& begin) {
  const auto position = positions_.find(loop.cueID);
  if (position != positions_.end() && position->second != loop.start) return;
  if (const auto label = labels_.find(loop.cueID); label != labels_.end()) {
    begin.name = use(label->second);
    named_.insert(begin.id);
  }
  giveNotes(loop.cueID, begin.id);
}

void MarkerNames::mapCuePoints(const CuePointView& points, std::uint32_t frameCount,
                               std::vector<AiffMarker>& markers) {
  std::map<std::uint32_t, std::int16_t> firstAt;
  std::multimap<std::uint32_t, std::int16_t> nameless;
  std::map<std::pair<std::uint32_t, std::string>, std::int16_t> named;
  for (const AiffMarker& marker : markers) {
    firstAt.try_emplace(marker.position, marker.id);
    if (named_.contains(marker.id))
      named.try_emplace({marker.position, marker.name}, marker.id);
    else
      nameless.emplace(marker.position, marker.id);
  }
  for (const CuePoint point : points) {
    if (markers.size() + 1 == markerIDLimit) return;
    if (point.position > frameCount) continue;
    const auto nextID = static_cast<std::int16_t>(markers.size() + 1);
    if (const auto label = labels_.find(point.id); label == labels_.end()) {
      const auto [place, isNew] = firstAt.try_emplace(point.position, nextID);
      giveNotes(point.id, place->second);
      if (isNew) {
        nameless.emplace(point.position, nextID);
        markers.push_back({nextID, point.position, "Cue " + decimalText(std::int64_t{point.id})});
      }
    } else {
      const std::string& name = use(label->second);
      const auto [place, isNew] = named.try_emplace({point.position, name}, nextID);
      const auto other = nameless.lower_bound(point.position);
      if (isNew && other != nameless.end() && other->first == point.position) {
        place->second = other->second;
        markers[static_cast<std::size_t>(other->second - 1)].name = name;
        nameless.erase(other);
      } else if (isNew) {
        firstAt.try_emplace(point.position, nextID);
        markers.push_back({nextID, point.position, name});
      }
      giveNotes(point.id, place->second);
    }
  }
}

void MarkerNames::report(Warnings& warnings) const {
  NameLoss changed;
  NameLoss cut;
  NameLoss lost;
  for (const auto& [id, name] : labels_) {
    if (!name.isUsed) lost.add(id);
    if (name.isUsed && name.isChanged) changed.add(id);
    if (name.isUsed && name.isCut) cut.add(id);
  }
  for (const std::int64_t id : cutNotes_)
    cut.add(id);
  for (const std::int64_t id : lostNotes_)
    lost.add(id);
  for (const auto& [id, note] : notes_)
    lost.add(id);
  lost.count += unread_;
  changed.report(WarningKind::nameCharacters, warnings);
  cut.report(WarningKind::longNames, warnings);
  lost.report(WarningKind::namesLeftOut, warnings);
}

}  // namespace corvana
