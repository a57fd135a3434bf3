// Plans the conversion of an AIFF or AIFF-C file into a WAV file.
#pragma once

#include "convert/conversion_plan.hpp"
#include "vocabulary/conversion_options.hpp"

namespace corvana {

/// `file` is the complete content of the input. Fails with a ConversionError.
ConversionPlan planAIFFToWAV(ByteView file, const ConversionOptions& options = {});

}  // namespace corvana
