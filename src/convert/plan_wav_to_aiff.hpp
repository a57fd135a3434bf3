// Plans the conversion of a WAV file into an AIFF file.
#pragma once

#include "convert/conversion_plan.hpp"
#include "vocabulary/conversion_options.hpp"

namespace corvana {

/// `file` is the complete content of the input. Fails with a ConversionError.
ConversionPlan planWAVToAIFF(ByteView file, const ConversionOptions& options = {});

}  // namespace corvana
