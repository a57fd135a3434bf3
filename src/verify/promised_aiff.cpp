#include "verify/promised_aiff.hpp"

#include <algorithm>
#include <deque>
#include <map>
#include <set>
#include <utility>

#include "wav/wav_texts.hpp"

namespace corvana {
namespace {

constexpr std::int64_t lastNote = 127;

/// Every loop that has a frame is two markers, from its first frame to behind its last one; the
/// IDs count up from 1. Only the first two loops have a place in the instrument.
void promiseLoops(const WavInfo& wav, LoopChoice choice, PromisedAiff& aiff) {
  if (choice == LoopChoice::none) return;
  std::int64_t number = 0;
  std::int16_t id = 1;
  for (const SampleLoop loop : wav.loops.value_or(SampleLoopView())) {
    ++number;
    const std::uint64_t begin = loop.start;
    const std::uint64_t end = std::min<std::uint64_t>(std::uint64_t{loop.end} + 1, aiff.frames);
    if (begin >= end) continue;
    if (id >= 32765) return;
    const std::string name = "Loop " + std::to_string(number);
    const std::size_t index = aiff.markers.size();
    aiff.markers.push_back({id++, loop.start, name + " Start", number, false});
    aiff.markers.push_back({id++, static_cast<std::uint32_t>(end), name + " End", number, true});
    // Only an alternating loop is not a forward loop in AIFF.
    const std::int16_t playMode = loop.type == 1 ? 2 : 1;
    if (aiff.loops.size() < 2) aiff.loops.push_back({number, playMode, index, index + 1});
    if (choice == LoopChoice::first) return;
  }
}

/// A cue point is a marker where there is none yet, within the sound or at its end.
void promiseCuePoints(const WavInfo& wav, PromisedAiff& aiff) {
  std::set<std::uint32_t> taken;
  for (const PromisedMarker& marker : aiff.markers)
    taken.insert(marker.position);
  auto id = static_cast<std::int16_t>(aiff.markers.size() + 1);
  for (const CuePoint point : wav.cuePoints) {
    if (id == 32767) return;
    if (point.position > aiff.frames || !taken.insert(point.position).second) continue;
    aiff.markers.push_back({id++, point.position, "Cue " + std::to_string(point.id)});
  }
}

/// Where names are kept: the label of its cue point ID names the begin of a loop unless a cue point
/// of this ID lies elsewhere. Then a cue point with a label names the first marker in its place
/// that has no name yet, or is one of its own unless that name is there. Notes are comments on
/// the marker that their cue point or loop has become.
class PromisedNames {
 public:
  PromisedNames(const WavInfo& wav, ByteView input, PromisedAiff& aiff) : wav_(wav), aiff_(aiff) {
    const WavTextViews texts = findWavTexts(input);
    // Of labels the last one counts, of stretches the first, and only without a label.
    for (auto view = texts.stretches.rbegin(); view != texts.stretches.rend(); ++view)
      if (isThere(view->text)) labels_[view->cueID] = promisedMarkerName(decodeWavText(view->text));
    for (const CueTextView& view : texts.labels)
      if (isThere(view.text)) labels_[view.cueID] = promisedMarkerName(decodeWavText(view.text));
    for (const CueTextView& view : texts.notes)
      if (isThere(view.text)) notes_[view.cueID].push_back(view.text);
    for (const CuePoint point : wav.cuePoints)
      if (labels_.contains(point.id) || notes_.contains(point.id))
        firstPositions_.try_emplace(point.id, point.position);
  }

  void promise() {
    nameLoops();
    for (std::size_t i = 0; i < aiff_.markers.size(); ++i)
      enter(i, isNamed_.contains(i));
    for (const CuePoint point : wav_.cuePoints) {
      if (aiff_.markers.size() == 32'766) break;
      if (point.position <= aiff_.frames) promisePoint(point);
    }
    if (!comments_.empty()) aiff_.texts.push_back(promisedComments(comments_));
  }

 private:
  void nameLoops() {
    std::vector<SampleLoop> loops;  // as far as they have markers
    for (const SampleLoop loop : wav_.loops.value_or(SampleLoopView())) {
      if (loops.size() * 2 >= aiff_.markers.size()) break;
      const PromisedMarker& begin = aiff_.markers[loops.size() * 2];
      if (++number_ == begin.loop) loops.push_back(loop);
    }
    for (std::size_t i = 0; i < loops.size(); ++i) {
      const std::uint32_t id = loops[i].cueID;
      const auto position = firstPositions_.find(id);
      if (position != firstPositions_.end() && position->second != loops[i].start) continue;
      if (const auto label = labels_.find(id); label != labels_.end()) {
        aiff_.markers[2 * i].name = label->second;
        isNamed_.insert(2 * i);
      }
      comment(id, 2 * i);
    }
  }

  void enter(std::size_t marker, bool isNamed) {
    const std::uint32_t position = aiff_.markers[marker].position;
    anyAt_.try_emplace(position, marker);
    if (isNamed)
      named_.try_emplace({position, aiff_.markers[marker].name}, marker);
    else
      nameless_[position].push_back(marker);
  }

  std::size_t add(std::uint32_t position, std::string name, bool isNamed) {
    const std::size_t marker = aiff_.markers.size();
    aiff_.markers.push_back({static_cast<std::int16_t>(marker + 1), position, std::move(name)});
    enter(marker, isNamed);
    return marker;
  }

  void promisePoint(const CuePoint& point) {
    const auto label = labels_.find(point.id);
    if (label == labels_.end()) {
      const auto other = anyAt_.find(point.position);
      const bool isNew = other == anyAt_.end();
      return comment(point.id, isNew ? add(point.position, "Cue " + std::to_string(point.id), false)
                                     : other->second);
    }
    if (const auto same = named_.find({point.position, label->second}); same != named_.end())
      return comment(point.id, same->second);
    const auto waiting = nameless_.find(point.position);
    if (waiting == nameless_.end() || waiting->second.empty())
      return comment(point.id, add(point.position, label->second, true));
    const std::size_t marker = waiting->second.front();
    waiting->second.pop_front();
    aiff_.markers[marker].name = label->second;
    named_.try_emplace({point.position, label->second}, marker);
    comment(point.id, marker);
  }

  void comment(std::uint32_t cueID, std::size_t marker) {
    const auto notes = notes_.find(cueID);
    if (notes == notes_.end()) return;
    for (const ByteView note : notes->second)
      if (comments_.size() < 65'535 && room_.holds(note.size()))
        comments_.emplace_back(aiff_.markers[marker].id, decodeWavText(note));
    notes_.erase(notes);
  }

  const WavInfo& wav_;
  PromisedAiff& aiff_;
  std::int64_t number_ = 0;
  std::map<std::uint32_t, std::string> labels_;
  std::map<std::uint32_t, std::vector<ByteView>> notes_;
  std::map<std::uint32_t, std::uint32_t> firstPositions_;
  std::set<std::size_t> isNamed_;
  std::map<std::uint32_t, std::size_t> anyAt_;
  std::map<std::uint32_t, std::deque<std::size_t>> nameless_;
  std::map<std::pair<std::uint32_t, std::string>, std::size_t> named_;
  std::vector<NumberedText> comments_;
  PromisedRoom room_;
};

/// What comes out of the smpl chunk: a recording above its note is corrected downwards, from 51
/// cents on upwards to the next note.
void promiseSamplerTuning(const WavInfo& wav, std::int64_t& note, std::int64_t& detune) {
  constexpr std::uint64_t semitone = std::uint64_t{1} << 32;
  const auto cents = static_cast<std::int64_t>(
      (wav.midiPitchFraction * std::uint64_t{100} + semitone / 2) / semitone);
  note = std::min<std::int64_t>(wav.midiUnityNote, lastNote);
  detune = -cents;
  if (cents > 50) {
    note += 1;
    detune += 100;
  }
}

void promiseInstrument(const WavInfo& wav, std::optional<std::uint8_t> rootKey,
                       PromisedAiff& aiff) {
  if (!wav.loops && !wav.instrument && !rootKey) return;
  std::int64_t note = rootKey.value_or(0);
  std::int64_t detune = 0;
  if (wav.loops) promiseSamplerTuning(wav, note, detune);
  AiffInstrument promised;
  promised.highNote = 127;
  promised.lowVelocity = 1;
  promised.highVelocity = 127;
  if (const auto& inst = wav.instrument) {
    // Of two chunks that disagree about the note, smpl counts.
    if (!wav.loops || inst->unshiftedNote == std::min<std::int64_t>(wav.midiUnityNote, lastNote)) {
      note = inst->unshiftedNote;
      detune = inst->fineTune;
    }
    const auto limited = [](std::uint8_t value, int least) {
      return static_cast<std::int8_t>(value < least ? least : value > 127 ? 127 : value);
    };
    promised.lowNote = limited(inst->lowNote, 0);
    promised.highNote = limited(inst->highNote, 0);
    promised.lowVelocity = limited(inst->lowVelocity, 1);
    promised.highVelocity = limited(inst->highVelocity, 1);
    promised.gain = inst->gain;
  }
  promised.baseNote = static_cast<std::int8_t>(note > lastNote ? lastNote : note);
  promised.detune = static_cast<std::int8_t>(detune < -50 ? -50 : detune > 50 ? 50 : detune);
  aiff.instrument = promised;
}

}  // namespace

PromisedAiff promisedAiff(const WavInfo& wav, ByteView input, const ConversionOptions& options) {
  PromisedAiff aiff;
  aiff.width = bytesFor(wav.bitsPerSample);
  aiff.frames = wav.dataSize / (std::uint64_t{wav.channels} * wav.bytesPerSample);
  promiseLoops(wav, options.loops, aiff);
  if (options.keepNames)
    PromisedNames(wav, input, aiff).promise();
  else
    promiseCuePoints(wav, aiff);
  if (options.keepTexts)
    for (PromisedChunk& chunk : promisedTextsOfAiff(input))
      aiff.texts.push_back(std::move(chunk));
  promiseInstrument(wav, options.rootKey, aiff);
  return aiff;
}

}  // namespace corvana
