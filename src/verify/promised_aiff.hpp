// What the rules promise of an AIFF file that a WAV file is converted into.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "aiff/aiff_format.hpp"
#include "verify/promised_texts.hpp"
#include "vocabulary/bytes.hpp"
#include "vocabulary/conversion_options.hpp"
#include "wav/wav_format.hpp"

namespace corvana {

struct PromisedMarker {
  std::int16_t id = 0;
  std::uint32_t position = 0;
  std::string name;
  std::int64_t loop =
      0;  ///< whose start or end it is, counted as in the smpl chunk; 0: a cue point
  bool isLoopEnd = false;
};

/// A loop of the INST chunk.
struct PromisedAiffLoop {
  std::int64_t number = 0;  ///< counted as in the smpl chunk
  std::int16_t playMode = 0;
  std::size_t begin = 0;  ///< index of its marker
  std::size_t end = 0;
};

struct PromisedAiff {
  std::uint32_t width = 0;  ///< bytes of a sample that are kept
  std::uint64_t frames = 0;
  std::vector<PromisedMarker> markers;
  std::vector<PromisedAiffLoop> loops;       ///< sustain, release
  std::optional<AiffInstrument> instrument;  ///< without its loops
  std::vector<PromisedChunk> texts;          ///< behind the samples
};

/// `wav` is what the file `input` holds.
PromisedAiff promisedAiff(const WavInfo& wav, ByteView input, const ConversionOptions& options);

}  // namespace corvana
