#include "convert/carry_out.hpp"

#include <algorithm>
#include <memory>
#include <span>
#include <utility>

namespace corvana {
namespace {

void copySampleFrames(const SampleRun& samples, const ByteSource& source, ByteSink& sink,
                      const ProgressHandler& progress) {
  const std::uint64_t sourceFrameSize = samples.sourceFrameSize();
  const std::uint64_t framesPerBlock = std::max<std::uint64_t>(maxBlockSize / sourceFrameSize, 1);
  // A short file does not pay for a whole block, and nothing for filling it with zeros.
  const std::unique_ptr<std::uint8_t[]> buffer(new std::uint8_t[static_cast<std::size_t>(
      std::min<std::uint64_t>(framesPerBlock, samples.frameCount) * samples.outputFrameSize())]);
  for (std::uint64_t done = 0; done < samples.frameCount;) {
    const std::uint64_t frames = std::min(framesPerBlock, samples.frameCount - done);
    const std::span block(buffer.get(),
                          static_cast<std::size_t>(frames * samples.outputFrameSize()));
    source.read(samples.offset + done * sourceFrameSize,
                static_cast<std::size_t>(frames * sourceFrameSize),
                [&](ByteView bytes) { convertSamples(samples.conversion, bytes, block); });
    sink.append(block);
    done += frames;
    if (progress) progress(static_cast<double>(done) / static_cast<double>(samples.frameCount));
  }
}

}  // namespace

void carryOut(const ConversionPlan& plan, const ByteSource& source, ByteSink& sink,
              const ProgressHandler& progress) {
  sink.reserve(plan.outputSize());
  sink.append(plan.header);
  copySampleFrames(plan.samples, source, sink, progress);
  sink.append(plan.trailer);
  if (progress && plan.samples.frameCount == 0) progress(1.0);
}

ByteBuffer carryOutInMemory(const ConversionPlan& plan, ByteView input) {
  MemorySink output;
  carryOut(plan, MemorySource(input), output, {});
  return std::move(output.bytes);
}

}  // namespace corvana
