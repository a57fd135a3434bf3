#include "convert/carry_out.hpp"

#include <algorithm>
#include <memory>
#include <span>
#include <utility>

namespace corvana {
namespace {

/// How many frames reach the next multiple of pieceSize from `position` in the output on.
std::uint64_t framesToPieceEnd(std::uint64_t position, std::uint64_t frameSize) {
  return (pieceSize - position % pieceSize + frameSize - 1) / frameSize;
}

/// `position` is where the samples begin in the output.
void copySampleFrames(const SampleRun& samples, std::uint64_t position, const ByteSource& source,
                      ByteSink& sink, const ProgressHandler& progress) {
  const std::uint64_t sourceFrameSize = samples.sourceFrameSize();
  const std::uint64_t outputFrameSize = samples.outputFrameSize();
  const std::uint64_t frameCount = samples.frameCount;
  const std::uint64_t framesPerBlock = std::max<std::uint64_t>(maxBlockSize / sourceFrameSize, 1);
  const std::uint64_t maxFrames =
      std::min({framesToPieceEnd(0, outputFrameSize), framesPerBlock, frameCount});
  // A short file does not pay for a whole piece, and nothing for filling it with zeros.
  const std::unique_ptr<std::uint8_t[]> buffer(
      new std::uint8_t[static_cast<std::size_t>(maxFrames * outputFrameSize)]);
  // Pieces reach into the next block, but not into the last one: who stops a conversion before it
  // is at its end is not to find all samples written, and nothing behind them.
  const std::uint64_t lastBlock =
      frameCount == 0 ? 0 : (frameCount - 1) / framesPerBlock * framesPerBlock;
  std::uint64_t reported = 0;
  for (std::uint64_t done = 0; done < frameCount;) {
    const std::uint64_t frames =
        std::min({framesToPieceEnd(position + done * outputFrameSize, outputFrameSize), maxFrames,
                  (done < lastBlock ? lastBlock : frameCount) - done});
    const std::span piece(buffer.get(), static_cast<std::size_t>(frames * outputFrameSize));
    source.read(samples.offset + done * sourceFrameSize,
                static_cast<std::size_t>(frames * sourceFrameSize),
                [&](ByteView bytes) { convertSamples(samples.conversion, bytes, piece); });
    sink.append(piece);
    done += frames;
    const std::uint64_t blockEnd = std::min(reported + framesPerBlock, frameCount);
    if (done < blockEnd) continue;
    reported = blockEnd;
    if (progress) progress(static_cast<double>(reported) / static_cast<double>(frameCount));
  }
}

}  // namespace

void carryOut(const ConversionPlan& plan, const ByteSource& source, ByteSink& sink,
              const ProgressHandler& progress) {
  sink.reserve(plan.outputSize());
  sink.append(plan.header);
  copySampleFrames(plan.samples, plan.header.size(), source, sink, progress);
  sink.append(plan.trailer);
  if (progress && plan.samples.frameCount == 0) progress(1.0);
}

ByteBuffer carryOutInMemory(const ConversionPlan& plan, ByteView input) {
  MemorySink output;
  carryOut(plan, MemorySource(input), output, {});
  return std::move(output.bytes);
}

}  // namespace corvana
