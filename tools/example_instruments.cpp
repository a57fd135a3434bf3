// make_example_instruments DIR: writes a few short looped instruments, made by synthesis, that
// between them use everything the converter carries over, and some things it cannot.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <numbers>
#include <string>
#include <vector>

#include "aiff/aiff_writer.hpp"
#include "aiff/big_endian.hpp"
#include "aiff/extended80.hpp"
#include "wav/wav_writer.hpp"

namespace {

using namespace corvana;
namespace fs = std::filesystem;

/// One struck, plucked or bowed note. A whole number of frames is one period of it and a whole
/// number of periods one loop, so every loop closes without a seam:
///
///     | attack … | sustain loop | fade | release loop | fade out |
///     0       loopStart   (each of the four stretches is one loop long)
struct Note {
  std::uint32_t rate;          ///< Hz
  std::uint16_t channels;      ///< 1 or 2
  std::uint16_t bits;          ///< per sample, 8 to 24
  std::uint32_t period;        ///< frames
  std::uint32_t cycles;        ///< periods in a loop
  std::uint32_t loopStart;     ///< frame
  std::vector<double> levels;  ///< of the harmonics that ring on
  double strike;               ///< level of the harmonics that only the attack has
  double chorus;               ///< level of a second voice, one cycle per loop apart

  std::uint32_t loopLength() const { return period * cycles; }
  std::uint32_t releaseStart() const { return loopStart + 2 * loopLength(); }
  std::uint32_t frameCount() const { return loopStart + 4 * loopLength(); }
};

/// What lies between two notes of the keyboard: the nearest key, and how far above it the
/// recording is.
struct Pitch {
  int key;
  int cents;  ///< -50 to 50
};

Pitch pitchOf(const Note& note) {
  const double frequency = static_cast<double>(note.rate) / note.period;
  const double exact = 69 + 12 * std::log2(frequency / 440);
  const int key = static_cast<int>(std::lround(exact));
  return {key, static_cast<int>(std::lround((exact - key) * 100))};
}

/// From 0 to 1 while `position` goes from 0 to 1, without corners.
double smoothStep(double position) {
  return 0.5 - 0.5 * std::cos(std::numbers::pi * std::clamp(position, 0.0, 1.0));
}

double envelope(const Note& note, double frame) {
  constexpr double attack = 0.003;  // seconds
  constexpr double releaseLevel = 0.4;
  const double loop = note.loopLength();
  const double fade = smoothStep((frame - note.loopStart - loop) / loop);
  const double fadeOut = smoothStep((frame - note.releaseStart() - loop) / loop);
  return smoothStep(frame / (attack * note.rate)) * (1 - fade * (1 - releaseLevel)) * (1 - fadeOut);
}

/// Between -1 and 1. Cosines that start with the loop are mirrored at both of its ends, so it
/// may be played back and forth as well.
double sampleAt(const Note& note, std::uint32_t frame, unsigned channel) {
  const double turn = 2 * std::numbers::pi * (static_cast<double>(frame) - note.loopStart) /
                      static_cast<double>(note.loopLength());
  double sum = 0;
  for (std::size_t i = 0; i < note.levels.size(); ++i) {
    const double cyclesOfHarmonic = static_cast<double>(note.cycles * (i + 1));
    const double side = channel == i % 2 ? 1.0 : 0.7;
    sum +=
        side * note.levels[i] *
        (std::cos(turn * cyclesOfHarmonic) + note.chorus * std::cos(turn * (cyclesOfHarmonic + 1)));
  }
  const double ringing = std::max(0.0, 1 - static_cast<double>(frame) / note.loopStart);
  for (unsigned harmonic = 7; harmonic < 14; ++harmonic)
    sum += note.strike / harmonic * std::pow(ringing, harmonic) *
           std::cos(turn * note.cycles * harmonic + channel);
  return std::clamp(sum * envelope(note, frame), -1.0, 1.0);
}

/// Left-justified signed samples, whole frames.
ByteBuffer render(const Note& note, ByteOrder order) {
  const std::uint32_t width = bytesFor(note.bits);
  const double fullScale = std::ldexp(1.0, note.bits - 1) - 1;
  ByteBuffer samples;
  for (std::uint32_t frame = 0; frame < note.frameCount(); ++frame) {
    for (unsigned channel = 0; channel < note.channels; ++channel) {
      const auto value =
          static_cast<std::int32_t>(std::lround(sampleAt(note, frame, channel) * fullScale));
      const std::uint32_t justified = static_cast<std::uint32_t>(value) << (8 * width - note.bits);
      for (std::uint32_t k = 0; k < width; ++k)
        samples.push_back(static_cast<std::uint8_t>(
            justified >> (8 * (order == ByteOrder::little ? k : width - 1 - k))));
    }
  }
  return samples;
}

/// The keys and velocities that a sampler shall play with this note, and how loud.
struct Zone {
  std::uint8_t lowKey = 0;
  std::uint8_t highKey = 127;
  std::uint8_t lowVelocity = 1;
  std::uint8_t highVelocity = 127;
  std::int8_t gain = 0;  ///< dB
};

SampleLoop sustainLoop(const Note& note) {
  SampleLoop loop;
  loop.start = note.loopStart;
  loop.end = note.loopStart + note.loopLength() - 1;
  return loop;
}

/// Turns round on the frame behind the loop, which is the mirror image of its first one.
SampleLoop alternatingReleaseLoop(const Note& note) {
  SampleLoop loop;
  loop.cueID = 1;
  loop.type = loop_type::alternating;
  loop.start = note.releaseStart();
  loop.end = note.releaseStart() + note.loopLength();
  return loop;
}

void writeFile(const fs::path& path, const SurroundingBytes& surrounding, ByteView samples) {
  fs::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary);
  file.exceptions(std::ios::failbit | std::ios::badbit);
  for (const ByteView part : {ByteView(surrounding.header), samples, ByteView(surrounding.trailer)})
    file.write(reinterpret_cast<const char*>(part.data()), std::ssize(part));
  file.close();
}

void writeWavNote(const fs::path& path, const Note& note, const Zone& zone,
                  const std::vector<SampleLoop>& loops, const std::vector<CuePoint>& cuePoints) {
  const Pitch pitch = pitchOf(note);
  const InstrumentChunk instrument{.unshiftedNote = static_cast<std::uint8_t>(pitch.key),
                                   .fineTune = static_cast<std::int8_t>(-pitch.cents),
                                   .gain = zone.gain,
                                   .lowNote = zone.lowKey,
                                   .highNote = zone.highKey,
                                   .lowVelocity = zone.lowVelocity,
                                   .highVelocity = zone.highVelocity};
  // The smpl chunk counts upwards from the key below.
  const int unityNote = pitch.cents < 0 ? pitch.key - 1 : pitch.key;
  const int fraction = pitch.cents < 0 ? pitch.cents + 100 : pitch.cents;
  const WavContent content{.channels = note.channels,
                           .sampleSize = note.bits,
                           .sampleRate = note.rate,
                           .frameCount = note.frameCount(),
                           .metadata = {.cuePoints = cuePoints,
                                        .instrument = instrument,
                                        .loops = loops,
                                        .unityNote = static_cast<std::uint32_t>(unityNote),
                                        .pitchFraction = static_cast<std::uint32_t>(
                                            std::llround(fraction / 100.0 * 4294967296.0))}};
  writeFile(path, writeWav(content), render(note, ByteOrder::little));
}

AiffContent aiffContentOf(const Note& note, const Zone& zone) {
  const Pitch pitch = pitchOf(note);
  const std::uint32_t length = note.loopLength();
  AiffInstrument instrument;
  instrument.baseNote = static_cast<std::int8_t>(pitch.key);
  instrument.detune = static_cast<std::int8_t>(-pitch.cents);
  instrument.lowNote = static_cast<std::int8_t>(zone.lowKey);
  instrument.highNote = static_cast<std::int8_t>(zone.highKey);
  instrument.lowVelocity = static_cast<std::int8_t>(zone.lowVelocity);
  instrument.highVelocity = static_cast<std::int8_t>(zone.highVelocity);
  instrument.gain = zone.gain;
  instrument.sustainLoop = {play_mode::forward, 1, 2};
  instrument.releaseLoop = {play_mode::forwardBackward, 3, 4};
  return {.channels = note.channels,
          .sampleSize = note.bits,
          .sampleRate = note.rate,
          .frameCount = note.frameCount(),
          .markers = {{1, note.loopStart, "sustain begin"},
                      {2, note.loopStart + length, "sustain end"},
                      {3, note.releaseStart(), "release begin"},
                      {4, note.releaseStart() + length + 1, "release end"},
                      {5, note.loopStart / 2, "body"}},
          .instrument = instrument};
}

void writeAiffNote(const fs::path& path, const Note& note, const Zone& zone) {
  writeFile(path, writeAiff(aiffContentOf(note, zone)), render(note, ByteOrder::big));
}

/// AIFF-C with little-endian samples, a form that the converter reads but does not write. It
/// has no instrument, only a marker.
void writeSowt(const fs::path& path, const Note& note) {
  ByteBuffer common;
  appendUInt16BE(common, note.channels);
  appendUInt32BE(common, note.frameCount());
  appendUInt16BE(common, note.bits);
  appendExtended80(common, note.rate);
  appendFourCC(common, "sowt");
  appendPString(common, "little-endian");

  ByteBuffer markers;
  appendUInt16BE(markers, 1);
  appendUInt16BE(markers, 1);
  appendUInt32BE(markers, note.loopStart);
  appendPString(markers, "tone");

  ByteBuffer sound(aiff_layout::soundHeaderSize);
  appendBytes(sound, render(note, ByteOrder::little));

  ByteBuffer form;
  appendFourCC(form, "AIFC");
  appendAiffChunk(form, "COMM", common);
  appendAiffChunk(form, "MARK", markers);
  appendAiffChunk(form, "SSND", sound);
  SurroundingBytes file;
  appendAiffChunk(file.header, "FORM", form);
  writeFile(path, file, {});
}

void makeGuitar(const fs::path& folder) {
  const Note note{.rate = 44100,
                  .channels = 2,
                  .bits = 24,
                  .period = 404,
                  .cycles = 12,
                  .loopStart = 20000,
                  .levels = {0.35, 0.16, 0.08, 0.04},
                  .strike = 0.5,
                  .chorus = 0};
  writeWavNote(folder / "Nylon Guitar A2.wav", note,
               {.lowKey = 40, .highKey = 50, .lowVelocity = 20, .highVelocity = 100, .gain = -2},
               {sustainLoop(note), alternatingReleaseLoop(note)},
               {{1, 0}, {2, 6000}, {3, note.loopStart}});
}

void makeBass(const fs::path& folder) {
  struct Key {
    const char* name;
    std::uint32_t period;
    Zone zone;
  };
  for (const Key& key : {Key{"Round Bass E1.wav", 1070, {.lowKey = 0, .highKey = 30}},
                         Key{"Round Bass A1.wav", 802, {.lowKey = 31, .highKey = 35}},
                         Key{"Round Bass D2.wav", 606, {.lowKey = 36, .highKey = 60, .gain = 1}}}) {
    const Note note{.rate = 44100,
                    .channels = 1,
                    .bits = 16,
                    .period = key.period,
                    .cycles = 4,
                    .loopStart = 9000,
                    .levels = {0.6, 0.2, 0.05},
                    .strike = 0.2,
                    .chorus = 0};
    writeWavNote(folder / key.name, note, key.zone, {sustainLoop(note)}, {});
  }
}

void makePad(const fs::path& folder) {
  writeAiffNote(folder / "Glass Pad C4.aif",
                {.rate = 48000,
                 .channels = 2,
                 .bits = 20,
                 .period = 183,
                 .cycles = 96,
                 .loopStart = 8000,
                 .levels = {0.3, 0.02, 0.1, 0.01, 0.05},
                 .strike = 0.2,
                 .chorus = 0.5},
                {.lowKey = 48, .highKey = 72, .gain = -3});
}

void makeToyPiano(const fs::path& folder) {
  writeAiffNote(folder / "Toy Piano C5.aiff",
                {.rate = 22050,
                 .channels = 1,
                 .bits = 8,
                 .period = 42,
                 .cycles = 20,
                 .loopStart = 7001,
                 .levels = {0.5, 0.1, 0.2},
                 .strike = 0.25,
                 .chorus = 0},
                {.lowKey = 60, .highKey = 84, .lowVelocity = 1, .highVelocity = 110});
}

void makeOrgan(const fs::path& folder) {
  writeSowt(folder / "Church Organ G3.aifc", {.rate = 44100,
                                              .channels = 2,
                                              .bits = 16,
                                              .period = 225,
                                              .cycles = 40,
                                              .loopStart = 4500,
                                              .levels = {0.3, 0.25, 0.1, 0.15},
                                              .strike = 0.1,
                                              .chorus = 0.1});
}

/// More than AIFF can say: three loops, one of them backward, one with a play count.
void makeBells(const fs::path& folder) {
  const Note note{.rate = 48000,
                  .channels = 2,
                  .bits = 16,
                  .period = 109,
                  .cycles = 30,
                  .loopStart = 15000,
                  .levels = {0.4, 0.03, 0.15, 0.02, 0.1},
                  .strike = 0.2,
                  .chorus = 0.2};
  SampleLoop backward = sustainLoop(note);
  backward.type = loop_type::backward;
  SampleLoop release = alternatingReleaseLoop(note);
  SampleLoop echo;
  echo.cueID = 2;
  echo.start = note.releaseStart();
  echo.end = note.releaseStart() + note.loopLength() - 1;
  echo.playCount = 3;
  writeWavNote(folder / "Backward Bells A4.wav", note, {.lowKey = 57, .highKey = 96, .gain = -6},
               {backward, release, echo}, {{7, 100}, {8, 100}});
}

}  // namespace

int main(int argumentCount, char** argumentValues) {
  if (argumentCount != 2) {
    std::fprintf(stderr, "Usage: make_example_instruments DIR\n");
    return 2;
  }
  try {
    const fs::path folder = argumentValues[1];
    makeGuitar(folder / "Strings");
    makeBass(folder / "Bass");
    makePad(folder / "Pads");
    makeToyPiano(folder / "Keys");
    makeOrgan(folder / "Keys");
    makeBells(folder / "Experiments");
  } catch (const std::exception& error) {
    std::fprintf(stderr, "make_example_instruments: %s\n", error.what());
    return 1;
  }
  return 0;
}
