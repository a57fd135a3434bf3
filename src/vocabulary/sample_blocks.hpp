// The way of all sample data, in both directions: block by block through one buffer.
#pragma once

#include <cstdint>
#include <functional>

#include "vocabulary/bytes.hpp"
#include "vocabulary/output_file.hpp"
#include "vocabulary/results.hpp"

namespace corvana {

/// Most bytes of sample data that one block takes from the input.
inline constexpr std::uint64_t blockSize = 1'048'576;

/// How sample data lies in the input and in the output.
struct SampleLayout {
  std::uint64_t frameCount = 0;
  std::uint64_t sourceFrameSize = 0;  ///< bytes
  std::uint64_t outputFrameSize = 0;  ///< bytes
};

/// Fills `output` with the converted frames from `firstFrame` on; its size says how many.
using FillBlock = std::function<void(std::uint64_t firstFrame, std::span<std::uint8_t> output)>;

/// Appends all frames to `file` in blocks of at most blockSize source bytes (but at least one
/// frame) and reports the finished fraction after each.
void writeSampleBlocks(const SampleLayout& layout, const FillBlock& fillBlock, OutputFile& file,
                       const ProgressHandler& progress);

}  // namespace corvana
