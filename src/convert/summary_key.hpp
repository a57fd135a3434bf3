// The key in the figures of a file, from the instrument that a conversion makes.
#pragma once

#include <optional>

#include "aiff/aiff_format.hpp"
#include "vocabulary/messages.hpp"
#include "wav/wav_format.hpp"

namespace corvana {

/// Sets rootKey and fineTune where there is an instrument.
inline void setKey(Summary& summary, const std::optional<AiffInstrument>& instrument) {
  if (!instrument) return;
  summary.rootKey = instrument->baseNote;
  summary.fineTune = instrument->detune;
}

/// The same.
inline void setKey(Summary& summary, const std::optional<InstrumentChunk>& instrument) {
  if (!instrument) return;
  summary.rootKey = instrument->unshiftedNote;
  summary.fineTune = instrument->fineTune;
}

}  // namespace corvana
