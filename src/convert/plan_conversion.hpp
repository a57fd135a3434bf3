// Plans a conversion in the direction that the input itself tells.
#pragma once

#include <variant>

#include "convert/conversion_plan.hpp"
#include "vocabulary/conversion_options.hpp"
#include "vocabulary/errors.hpp"

namespace corvana {

/// Of a WAV file into an AIFF file, of an AIFF or AIFF-C file into a WAV file. `file` is the
/// complete content of the input. Fails with a ConversionError, also where it is neither.
ConversionPlan planConversion(ByteView file, const ConversionOptions& options = {});

/// What a conversion would make of a file.
using Prospect = std::variant<ConversionPlan, ConversionError>;

/// `file` is its complete content.
Prospect prospectOf(ByteView file, const ConversionOptions& options = {});

}  // namespace corvana
