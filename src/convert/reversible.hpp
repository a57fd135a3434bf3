// Conversions that can be undone: the output carries a capsule with what its format cannot hold,
// and converting it back gives the input to the last byte.
#pragma once

#include <optional>

#include "convert/conversion_plan.hpp"
#include "vocabulary/bytes.hpp"
#include "vocabulary/conversion_options.hpp"

namespace corvana {

/// The plan that makes the original of a file that was converted reversibly: all its samples are
/// read for that. What others have added to the file is left out and named. Absent where the file
/// carries no original; with a warning where it does, but its samples or sampler data are no longer
/// those that were written, names or texts that are to be kept are not, or the capsule is damaged.
std::optional<ConversionPlan> planRestoring(ByteView file, bool isWAV,
                                            const ConversionOptions& options, Warnings& warnings);

/// Adds the capsule to a plan that was made of `file` with these options. Fails with tooLarge.
void makeReversible(ConversionPlan& plan, ByteView file, const ConversionOptions& options);

}  // namespace corvana
