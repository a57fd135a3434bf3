// What the rules promise of a WAV file that an AIFF file is converted into.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "aiff/aiff_format.hpp"
#include "verify/promised_texts.hpp"
#include "vocabulary/bytes.hpp"
#include "vocabulary/conversion_options.hpp"
#include "wav/wav_format.hpp"

namespace corvana {

struct PromisedWav {
  std::uint32_t width = 0;  ///< bytes of a sample
  std::uint64_t frames = 0;
  std::uint32_t sampleRate = 0;  ///< Hz
  std::vector<SampleLoop> loops;
  std::vector<CuePoint> cuePoints;
  std::optional<InstrumentChunk> instrument;
  std::uint32_t unityNote = 0;
  std::uint32_t pitchFraction = 0;
  std::vector<PromisedChunk> texts;  ///< behind everything else
};

/// `aiff` is what the file `input` holds.
PromisedWav promisedWav(const AiffInfo& aiff, ByteView input, const ConversionOptions& options);

}  // namespace corvana
