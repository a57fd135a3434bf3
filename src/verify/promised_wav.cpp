#include "verify/promised_wav.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <utility>

#include "aiff/aiff_texts.hpp"

namespace corvana {
namespace {

/// A name ends at its first zero.
std::string shownName(const AiffMarker& marker) {
  return marker.name.substr(0, marker.name.find('\0'));
}

/// Where loops find their markers: the last one of an ID counts, and none lies behind the sound.
using Positions = std::map<std::int16_t, std::uint32_t>;

/// A loop that is switched on, has both markers and a frame between them; WAV names its last frame.
std::optional<SampleLoop> promisedLoop(const AiffLoop& loop, const Positions& positions) {
  const auto begin = positions.find(loop.beginMarker);
  const auto end = positions.find(loop.endMarker);
  if (loop.playMode == 0 || begin == positions.end() || end == positions.end()) return {};
  if (begin->second >= end->second) return {};
  const std::uint32_t type = loop.playMode == 2 ? 1 : 0;
  return SampleLoop{.type = type, .start = begin->second, .end = end->second - 1, .playCount = 0};
}

/// Where names are kept: cue points of the markers of loops that have a name or a comment, unless
/// the name is what such a marker is called anyway, then those of all other markers in the sound.
/// The cue point ID of a loop is that of its begin marker, or one that no cue point has.
void promiseNames(const AiffInfo& aiff, ByteView input, const std::vector<AiffLoop>& loops,
                  PromisedWav& wav) {
  std::map<std::int16_t, std::vector<ByteView>> comments;
  for (const AiffCommentView& view : findAiffTexts(input).comments)
    if (view.marker != 0 && !view.text.empty() && view.text[0] != 0)
      comments[view.marker].push_back(view.text);
  std::map<std::int16_t, std::size_t> lastOfID;
  for (std::size_t i = 0; i < aiff.markers.size(); ++i)
    lastOfID[aiff.markers[i].id] = i;

  std::vector<NumberedText> labels;
  std::vector<NumberedText> notes;
  PromisedRoom room;
  const auto promisePoint = [&](const AiffMarker& marker, const std::string& anyway) {
    const std::uint32_t id = static_cast<std::uint32_t>(wav.cuePoints.size()) + 1;
    wav.cuePoints.push_back(
        {id, std::min(marker.position, static_cast<std::uint32_t>(wav.frames))});
    const std::string name = shownName(marker);
    if (!name.empty() && name != anyway) labels.emplace_back(id, name);
    for (const ByteView comment : comments[marker.id])
      if (room.holds(comment.size())) notes.emplace_back(id, decodeAiffText(comment));
    comments.erase(marker.id);
    return id;
  };

  std::map<std::int16_t, std::uint32_t> idsOfLoops;
  for (std::size_t i = 0; i < loops.size(); ++i)
    for (const bool isEnd : {false, true}) {
      const std::int16_t id = isEnd ? loops[i].endMarker : loops[i].beginMarker;
      const AiffMarker& marker = aiff.markers[lastOfID.at(id)];
      if (!idsOfLoops.emplace(id, 0).second) continue;
      const std::string anyway = "Loop " + std::to_string(i + 1) + (isEnd ? " End" : " Start");
      const std::string name = shownName(marker);
      if ((!name.empty() && name != anyway) || comments.contains(id))
        idsOfLoops[id] = promisePoint(marker, anyway);
    }
  for (const AiffMarker& marker : aiff.markers)
    if (!idsOfLoops.contains(marker.id) && marker.position <= wav.frames) promisePoint(marker, {});
  const auto points = static_cast<std::uint32_t>(wav.cuePoints.size());
  for (std::size_t i = 0; i < loops.size(); ++i) {
    const std::uint32_t id = idsOfLoops[loops[i].beginMarker];
    if (id != 0)
      wav.loops[i].cueID = id;
    else if (i == 1 && points > 0)
      wav.loops[i].cueID = points + 1;
  }
  if (!labels.empty() || !notes.empty()) wav.texts.push_back(promisedCueTexts(labels, notes));
}

void promisePoints(const AiffInfo& aiff, ByteView input, const ConversionOptions& options,
                   PromisedWav& wav) {
  const LoopChoice choice = options.loops;
  const auto frames = static_cast<std::uint32_t>(wav.frames);
  Positions positions;
  for (const AiffMarker& marker : aiff.markers)
    positions[marker.id] = std::min(marker.position, frames);

  std::set<std::int16_t> used;
  std::vector<AiffLoop> loops;
  if (aiff.instrument && choice != LoopChoice::none)
    for (const AiffLoop& loop : {aiff.instrument->sustainLoop, aiff.instrument->releaseLoop})
      if (auto promised = promisedLoop(loop, positions)) {
        promised->cueID = static_cast<std::uint32_t>(wav.loops.size());
        wav.loops.push_back(*promised);
        loops.push_back(loop);
        used.insert(loop.beginMarker);
        used.insert(loop.endMarker);
        if (choice == LoopChoice::first) break;
      }
  if (options.keepNames) return promiseNames(aiff, input, loops, wav);
  std::uint32_t id = 1;
  for (const AiffMarker& marker : aiff.markers)
    if (!used.contains(marker.id) && marker.position <= frames)
      wav.cuePoints.push_back({id++, marker.position});
}

/// The recording lies as far below its base note as the detune raises it, and the other way round.
/// WAV can only say how far it lies above a note.
void promiseTuning(int baseNote, int detune, PromisedWav& wav) {
  int note = std::max(baseNote, 0);
  int centsAbove = std::min(std::max(-detune, 0), 50);
  if (detune > 0 && baseNote > 0) {
    note -= 1;
    centsAbove = 100 - std::min(detune, 50);
  }
  constexpr std::int64_t semitone = std::int64_t{1} << 32;
  wav.unityNote = static_cast<std::uint32_t>(note);
  wav.pitchFraction = static_cast<std::uint32_t>((centsAbove * semitone + 50) / 100);
}

void promiseInstrument(const AiffInstrument& inst, PromisedWav& wav) {
  const auto least = [](std::int8_t value, int limit) {
    return static_cast<std::uint8_t>(value < limit ? limit : value);
  };
  const auto within = [](int value, int low, int high) {
    return static_cast<std::int8_t>(value < low ? low : value > high ? high : value);
  };
  wav.instrument = InstrumentChunk{.unshiftedNote = least(inst.baseNote, 0),
                                   .fineTune = within(inst.detune, -50, 50),
                                   .gain = within(inst.gain, -128, 127),
                                   .lowNote = least(inst.lowNote, 0),
                                   .highNote = least(inst.highNote, 0),
                                   .lowVelocity = least(inst.lowVelocity, 1),
                                   .highVelocity = least(inst.highVelocity, 1)};
  promiseTuning(inst.baseNote, inst.detune, wav);
}

}  // namespace

PromisedWav promisedWav(const AiffInfo& aiff, ByteView input, const ConversionOptions& options) {
  PromisedWav wav;
  wav.width = bytesFor(aiff.sampleSize);
  const std::uint64_t there = aiff.soundSize / (std::uint64_t{aiff.channels} * wav.width);
  wav.frames = std::min<std::uint64_t>(aiff.frameCount, there);
  wav.sampleRate = static_cast<std::uint32_t>(std::floor(aiff.sampleRate + 0.5));
  promisePoints(aiff, input, options, wav);
  if (options.keepTexts)
    for (PromisedChunk& chunk : promisedTextsOfWav(input))
      wav.texts.push_back(std::move(chunk));
  AiffInstrument named{.highNote = 127, .lowVelocity = 1, .highVelocity = 127};
  named.baseNote = static_cast<std::int8_t>(options.rootKey.value_or(0));
  if (aiff.instrument || options.rootKey)
    promiseInstrument(aiff.instrument ? *aiff.instrument : named, wav);
  return wav;
}

}  // namespace corvana
