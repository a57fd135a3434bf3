#include "convert/map_wav_to_aiff.hpp"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "convert/marker_names.hpp"
#include "vocabulary/text_format.hpp"

namespace corvana {
namespace {

constexpr std::uint32_t highestNote = 127;
constexpr int maxCents = 50;  ///< of detune, either way

/// IDs are consecutive, so the list tells the next one.
std::size_t nextMarkerID(const std::vector<AiffMarker>& markers) {
  return markers.size() + 1;
}

std::int16_t addMarker(std::vector<AiffMarker>& markers, std::uint32_t position, std::string name) {
  const auto id = static_cast<std::int16_t>(nextMarkerID(markers));
  markers.push_back({id, position, std::move(name)});
  return id;
}

std::int16_t playModeOf(const SampleLoop& loop, std::int64_t number, Warnings& warnings) {
  switch (loop.type) {
    case loop_type::forward:
      return play_mode::forward;
    case loop_type::alternating:
      return play_mode::forwardBackward;
    case loop_type::backward:
      addWarning(warnings, WarningKind::backwardLoop, {number});
      return play_mode::forward;
    default:
      addWarning(warnings, WarningKind::unknownLoopType, {number, std::int64_t{loop.type}});
      return play_mode::forward;
  }
}

void mapLoops(const SampleLoopView& loops, std::uint32_t frameCount, LoopChoice choice,
              MarkerNames* names, AiffMetadata& metadata, Warnings& warnings) {
  if (choice == LoopChoice::none) return;
  std::int64_t number = 0;
  for (const SampleLoop loop : loops) {
    ++number;
    const std::uint32_t start = std::min(loop.start, frameCount);
    // WAV names the last frame of the loop, AIFF the point behind it.
    const std::uint32_t end = loop.end < frameCount ? loop.end + 1 : frameCount;
    if (start >= end) {
      addWarning(warnings, WarningKind::invalidLoop,
                 {number, std::int64_t{loop.start}, std::int64_t{loop.end}});
      continue;
    }
    if (nextMarkerID(metadata.markers) >= markerIDLimit - 2) break;
    const std::string name = "Loop " + decimalText(number);
    AiffLoop mapped;
    mapped.beginMarker = addMarker(metadata.markers, start, name + " Start");
    mapped.endMarker = addMarker(metadata.markers, end, name + " End");
    if (names != nullptr) names->nameLoop(loop, metadata.markers.end()[-2]);
    mapped.playMode = playModeOf(loop, number, warnings);
    metadata.loops.push_back(mapped);
    if (loop.playCount != 0)
      addWarning(warnings, WarningKind::playCount, {number, std::int64_t{loop.playCount}});
    if (choice == LoopChoice::first) break;
  }
  if (metadata.loops.size() > 2) addWarning(warnings, WarningKind::loopsBeyondTwo);
}

/// A cue point where a marker already lies would say nothing new, so it makes none.
void mapCuePoints(const CuePointView& cuePoints, std::uint32_t frameCount,
                  std::vector<AiffMarker>& markers) {
  // Sorted: no choice of positions makes the search in so few of them slow.
  std::vector<std::uint32_t> positions;
  positions.reserve(markers.size());
  for (const AiffMarker& marker : markers)
    positions.push_back(marker.position);
  std::sort(positions.begin(), positions.end());
  for (const CuePoint point : cuePoints) {
    if (nextMarkerID(markers) == markerIDLimit) return;
    if (point.position > frameCount) continue;
    // Most files list their points in order, which needs no search.
    auto place = positions.end();
    if (!positions.empty() && point.position <= positions.back()) {
      place = std::lower_bound(positions.begin(), positions.end(), point.position);
      if (*place == point.position) continue;
    }
    positions.insert(place, point.position);
    addMarker(markers, point.position, "Cue " + decimalText(std::int64_t{point.id}));
  }
}

struct Tuning {
  std::uint32_t note = 0;
  int detune = 0;  ///< cents
};

/// The WAV fraction says how far the recording lies above the note, the AIFF detune how to
/// correct it; past the middle the next note up is the nearer one.
Tuning tuningOfSampler(std::uint32_t unityNote, std::uint32_t pitchFraction) {
  const auto cents = static_cast<int>(std::round(pitchFraction / 4294967296.0 * 100));
  if (cents <= maxCents) return {unityNote, -cents};
  return {unityNote + 1, 100 - cents};
}

/// The inst chunk only has the last word where the two chunks speak of the same note.
Tuning tuningOf(const WavInfo& info) {
  const std::uint32_t unityNote = std::min(info.midiUnityNote, highestNote);
  const bool instrumentDecides =
      info.instrument && (!info.loops || info.instrument->unshiftedNote == unityNote);
  if (instrumentDecides) return {info.instrument->unshiftedNote, info.instrument->fineTune};
  return tuningOfSampler(unityNote, info.midiPitchFraction);
}

std::int8_t noteField(std::uint32_t note) {
  return static_cast<std::int8_t>(std::min(note, highestNote));
}

std::int8_t velocityField(std::uint8_t velocity) {
  return static_cast<std::int8_t>(std::clamp<int>(velocity, 1, 127));
}

constexpr InstrumentChunk wholeRange{.highNote = 127, .lowVelocity = 1, .highVelocity = 127};

std::optional<AiffInstrument> mapInstrument(const WavInfo& info,
                                            const std::vector<AiffLoop>& loops) {
  if (!info.loops && !info.instrument) return std::nullopt;
  const InstrumentChunk chunk = info.instrument.value_or(wholeRange);
  const Tuning tuning = tuningOf(info);

  AiffInstrument instrument;
  instrument.baseNote = noteField(tuning.note);
  instrument.detune = static_cast<std::int8_t>(std::clamp(tuning.detune, -maxCents, maxCents));
  instrument.lowNote = noteField(chunk.lowNote);
  instrument.highNote = noteField(chunk.highNote);
  instrument.lowVelocity = velocityField(chunk.lowVelocity);
  instrument.highVelocity = velocityField(chunk.highVelocity);
  instrument.gain = chunk.gain;
  if (!loops.empty()) instrument.sustainLoop = loops[0];
  if (loops.size() > 1) instrument.releaseLoop = loops[1];
  return instrument;
}

}  // namespace

AiffMetadata mapWavMetadata(const WavInfo& info, std::uint32_t frameCount,
                            const ConversionOptions& options, Warnings& warnings,
                            const WavTextViews& texts) {
  AiffMetadata metadata;
  std::optional<MarkerNames> names;
  if (options.keepNames) names.emplace(texts, info.cuePoints);
  if (info.loops)
    mapLoops(*info.loops, frameCount, options.loops, names ? &*names : nullptr, metadata, warnings);
  if (names) {
    names->mapCuePoints(info.cuePoints, frameCount, metadata.markers);
    names->report(warnings);
    metadata.comments = names->takeComments();
  } else {
    mapCuePoints(info.cuePoints, frameCount, metadata.markers);
  }
  if (options.rootKey && !info.loops && !info.instrument) {
    addWarning(warnings, WarningKind::rootFromName, {std::int64_t{*options.rootKey}});
    WavInfo named = info;
    named.instrument = wholeRange;
    named.instrument->unshiftedNote = *options.rootKey;
    metadata.instrument = mapInstrument(named, {});
  } else {
    metadata.instrument = mapInstrument(info, metadata.loops);
  }
  return metadata;
}

}  // namespace corvana
