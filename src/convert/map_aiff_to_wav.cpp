#include "convert/map_aiff_to_wav.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <set>
#include <vector>

#include "convert/cue_names.hpp"

namespace corvana {
namespace {

constexpr int maxCents = 50;  ///< of detune, either way

/// Where the marker of this ID lies, at most at the end of the sound data. The later of two
/// markers with the same ID counts.
std::optional<std::uint32_t> positionOf(std::int16_t id, const std::vector<AiffMarker>& markers,
                                        std::uint32_t framesUsed) {
  const auto found = std::find_if(markers.rbegin(), markers.rend(),
                                  [id](const AiffMarker& marker) { return marker.id == id; });
  if (found == markers.rend()) return std::nullopt;
  return std::min(found->position, framesUsed);
}

std::uint32_t loopTypeOf(std::int16_t playMode, LoopRole role, Warnings& warnings) {
  if (playMode == play_mode::forwardBackward) return loop_type::alternating;
  if (playMode != play_mode::forward)
    addWarning(warnings, WarningKind::unknownPlayMode, {role, std::int64_t{playMode}});
  return loop_type::forward;
}

/// Absent when the loop is off or, with a warning, cannot be used.
std::optional<SampleLoop> mapLoop(const AiffLoop& loop, LoopRole role,
                                  const std::vector<AiffMarker>& markers, std::uint32_t framesUsed,
                                  Warnings& warnings) {
  if (loop.playMode == play_mode::none) return std::nullopt;
  const auto start = positionOf(loop.beginMarker, markers, framesUsed);
  const auto end = positionOf(loop.endMarker, markers, framesUsed);
  if (!start || !end) {
    addWarning(warnings, WarningKind::missingMarkers, {role});
    return std::nullopt;
  }
  if (*end <= *start) {
    addWarning(warnings, WarningKind::invalidLoopRole,
               {role, std::int64_t{*start}, std::int64_t{*end}});
    return std::nullopt;
  }
  SampleLoop mapped;
  mapped.type = loopTypeOf(loop.playMode, role, warnings);
  mapped.start = *start;
  mapped.end = *end - 1;  // WAV names the last frame of the loop, AIFF the point behind it
  return mapped;
}

struct UnityNote {
  std::uint32_t note = 0;
  int cents = 0;  ///< that the recording lies above the note
};

/// AIFF detune corrects the pitch on playback; a recording that has to be raised lies below its
/// base note, which WAV can only say as so many cents above the note beneath.
UnityNote unityNoteOf(const AiffInstrument& instrument, std::uint8_t note) {
  const int detune = instrument.detune;
  if (detune <= 0) return {note, std::min(-detune, maxCents)};
  // Below note 0 there is none; the correction is lost.
  if (instrument.baseNote <= 0) return {note, 0};
  return {note - 1U, 100 - std::min(detune, maxCents)};
}

std::uint32_t pitchFractionOf(int cents) {
  constexpr double most = std::numeric_limits<std::uint32_t>::max();
  return static_cast<std::uint32_t>(std::min(std::round(cents / 100.0 * 4294967296.0), most));
}

std::uint8_t noteField(std::int8_t note) {
  return static_cast<std::uint8_t>(std::max<int>(note, 0));
}

std::uint8_t velocityField(std::int8_t velocity) {
  return static_cast<std::uint8_t>(std::max<int>(velocity, 1));
}

void mapInstrument(const AiffInstrument& instrument, WavMetadata& metadata, Warnings& warnings) {
  InstrumentChunk chunk;
  chunk.unshiftedNote = noteField(instrument.baseNote);
  chunk.fineTune =
      static_cast<std::int8_t>(std::clamp<int>(instrument.detune, -maxCents, maxCents));
  chunk.gain = static_cast<std::int8_t>(std::clamp<int>(instrument.gain, -128, 127));
  chunk.lowNote = noteField(instrument.lowNote);
  chunk.highNote = noteField(instrument.highNote);
  chunk.lowVelocity = velocityField(instrument.lowVelocity);
  chunk.highVelocity = velocityField(instrument.highVelocity);
  if (chunk.gain != instrument.gain)
    addWarning(warnings, WarningKind::clampedGain, {std::int64_t{instrument.gain}});

  const UnityNote unity = unityNoteOf(instrument, chunk.unshiftedNote);
  metadata.instrument = chunk;
  metadata.unityNote = unity.note;
  metadata.pitchFraction = pitchFractionOf(unity.cents);
}

/// Cue points without names, but for markers of loops.
void mapMarkers(const std::vector<AiffMarker>& markers, const std::set<std::int16_t>& ofLoops,
                std::uint32_t framesUsed, std::vector<CuePoint>& cuePoints) {
  for (const AiffMarker& marker : markers) {
    if (ofLoops.contains(marker.id) || marker.position > framesUsed) continue;
    const auto id = static_cast<std::uint32_t>(cuePoints.size() + 1);
    cuePoints.push_back({id, marker.position});
  }
}

}  // namespace

WavMetadata mapLoopsAndMarkers(const AiffInfo& info, std::uint32_t framesUsed,
                               const ConversionOptions& options, Warnings& warnings,
                               const AiffTextViews& texts) {
  WavMetadata metadata;
  std::vector<AiffLoop> loops;
  std::set<std::int16_t> usedMarkers;
  const std::size_t mostLoops = options.loops == LoopChoice::all     ? 2
                                : options.loops == LoopChoice::first ? 1
                                                                     : 0;
  const auto addLoop = [&](const AiffLoop& loop, LoopRole role) {
    if (metadata.loops.size() == mostLoops) return;
    std::optional<SampleLoop> mapped = mapLoop(loop, role, info.markers, framesUsed, warnings);
    if (!mapped) return;
    mapped->cueID = static_cast<std::uint32_t>(metadata.loops.size());
    metadata.loops.push_back(*mapped);
    loops.push_back(loop);
    usedMarkers.insert({loop.beginMarker, loop.endMarker});
  };
  if (info.instrument) {
    addLoop(info.instrument->sustainLoop, LoopRole::sustain);
    addLoop(info.instrument->releaseLoop, LoopRole::release);
  }
  if (options.keepNames)
    mapNamedMarkers(info, texts, loops, framesUsed, metadata, warnings);
  else
    mapMarkers(info.markers, usedMarkers, framesUsed, metadata.cuePoints);
  if (info.instrument) {
    mapInstrument(*info.instrument, metadata, warnings);
  } else if (options.rootKey) {
    addWarning(warnings, WarningKind::rootFromName, {std::int64_t{*options.rootKey}});
    mapInstrument({.baseNote = static_cast<std::int8_t>(*options.rootKey),
                   .highNote = 127,
                   .lowVelocity = 1,
                   .highVelocity = 127},
                  metadata, warnings);
  }
  return metadata;
}

}  // namespace corvana
