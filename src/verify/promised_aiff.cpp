#include "verify/promised_aiff.hpp"

#include <algorithm>
#include <set>

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

PromisedAiff promisedAiff(const WavInfo& wav, const ConversionOptions& options) {
  PromisedAiff aiff;
  aiff.width = bytesFor(wav.bitsPerSample);
  aiff.frames = wav.dataSize / (std::uint64_t{wav.channels} * wav.bytesPerSample);
  promiseLoops(wav, options.loops, aiff);
  promiseCuePoints(wav, aiff);
  promiseInstrument(wav, options.rootKey, aiff);
  return aiff;
}

}  // namespace corvana
