// Joins the input file, the sample kernels and the block loop.
#pragma once

#include <cstddef>

#include "convert/sample_kernels.hpp"
#include "platform/files.hpp"
#include "vocabulary/sample_blocks.hpp"

namespace corvana {

/// The routine that fills output blocks with converted frames of `input`, whose first frame
/// starts at byte `soundOffset`. Refers to `input` as long as it is used. `layout` lies wholly
/// inside the input.
FillBlock copySampleFrames(const InputFile& input, std::size_t soundOffset,
                           const SampleConversion& samples, const SampleLayout& layout);

}  // namespace corvana
