// The way of all sample data, in both directions: block by block through one buffer.
#pragma once

#include <cstdint>

#include "convert/conversion_plan.hpp"
#include "vocabulary/streams.hpp"

namespace corvana {

/// Most bytes of sample data that one block takes from the input.
inline constexpr std::uint64_t maxBlockSize = 1'048'576;

/// Writes the whole output to `sink`; `source` is the input that the plan was made of. Samples go
/// in blocks of at most maxBlockSize source bytes (but at least one frame). Fails only as source,
/// sink and `progress` do, and then leaves the sink with a beginning of the output.
void carryOut(const ConversionPlan& plan, const ByteSource& source, ByteSink& sink,
              const ProgressHandler& progress);

/// The whole output, in memory; `input` is the content that the plan was made of. Fails with
/// std::bad_alloc.
ByteBuffer carryOutInMemory(const ConversionPlan& plan, ByteView input);

}  // namespace corvana
