// What the original of a reversible conversion is, as its capsule tells.
#pragma once

#include <optional>

#include "convert/capsule.hpp"
#include "vocabulary/messages.hpp"

namespace corvana {

/// The figures of the original, read from its bytes around the samples. Absent where these are not
/// those of a WAV or AIFF file, whichever it has to be, with such samples between them; or fails
/// with a ConversionError.
std::optional<Summary> summaryOfOriginal(const Capsule& capsule, bool isWAV);

}  // namespace corvana
