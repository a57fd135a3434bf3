// The way of all sample data, in both directions: piece by piece through one buffer.
#pragma once

#include <cstdint>

#include "convert/conversion_plan.hpp"
#include "vocabulary/streams.hpp"

namespace corvana {

/// Most bytes of sample data of the input in one block. Progress is told after each block.
inline constexpr std::uint64_t maxBlockSize = 1'048'576;

/// Bytes. Samples reach the sink in pieces that end at a multiple of this in the output, or less
/// than a frame behind it. A piece and its source stay in the processor's cache until the piece is
/// written, and a file system that gets whole such pieces keeps each as one.
inline constexpr std::uint64_t pieceSize = 262'144;

/// Writes the whole output to `sink`; `source` is the input that the plan was made of. Samples are
/// read in pieces of at most maxBlockSize bytes (but at least one frame). Fails only as source,
/// sink and `progress` do, and then leaves the sink with a beginning of the output.
void carryOut(const ConversionPlan& plan, const ByteSource& source, ByteSink& sink,
              const ProgressHandler& progress);

/// The whole output, in memory; `input` is the content that the plan was made of. Fails with
/// std::bad_alloc.
ByteBuffer carryOutInMemory(const ConversionPlan& plan, ByteView input);

}  // namespace corvana
