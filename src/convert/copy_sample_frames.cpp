#include "convert/copy_sample_frames.hpp"

namespace corvana {

FillBlock copySampleFrames(const InputFile& input, std::size_t soundOffset,
                           const SampleConversion& samples, const SampleLayout& layout) {
  const std::uint64_t frameSize = layout.sourceFrameSize;
  return [=, &input](std::uint64_t firstFrame, std::span<std::uint8_t> block) {
    input.read([&](ByteView file) {
      convertSamples(samples, file.subspan(soundOffset + firstFrame * frameSize), block);
    });
  };
}

}  // namespace corvana
