#include "vocabulary/sample_blocks.hpp"

#include <algorithm>
#include <memory>

namespace corvana {

void writeSampleBlocks(const SampleLayout& layout, const FillBlock& fillBlock, OutputFile& file,
                       const ProgressHandler& progress) {
  const std::uint64_t framesPerBlock =
      std::max<std::uint64_t>(blockSize / std::max<std::uint64_t>(layout.sourceFrameSize, 1), 1);
  // A short file does not pay for a whole block.
  const auto buffer = std::make_unique_for_overwrite<std::uint8_t[]>(
      std::min(framesPerBlock, layout.frameCount) * layout.outputFrameSize);
  if (framesPerBlock < layout.frameCount) file.expect(layout.frameCount * layout.outputFrameSize);
  for (std::uint64_t done = 0; done < layout.frameCount;) {
    const std::uint64_t frames = std::min(framesPerBlock, layout.frameCount - done);
    const std::span block(buffer.get(), frames * layout.outputFrameSize);
    fillBlock(done, block);
    file.append(block);
    done += frames;
    if (progress) progress(static_cast<double>(done) / static_cast<double>(layout.frameCount));
  }
}

}  // namespace corvana
