#include "check/seam.hpp"

#include <algorithm>
#include <cmath>

#include "inspect/samples.hpp"

namespace corvana {
namespace {

constexpr std::uint64_t surroundings = 1024;  // frames
constexpr std::uint64_t longestCycle = 4096;  // frames
constexpr std::uint32_t mostChannels = 32;
constexpr double standsOut = 4;  // times the largest step around
constexpr double inaudible = 1.0 / 1024;

/// Samples in parts of full scale.
class Samples {
 public:
  Samples(ByteView content, const FileDescription& file)
      : format_(*file.format),
        read_(sampleReader(format_)),
        data_(content.subspan(static_cast<std::size_t>(file.dataOffset),
                              static_cast<std::size_t>(file.dataSize))) {}

  bool canBeRead() const { return read_ != nullptr; }

  double rounding() const {
    return format_.kind == SampleKind::integer ? std::ldexp(1.0, 1 - static_cast<int>(format_.bits))
                                               : 0;
  }

  double at(std::uint64_t frame, std::uint32_t channel) const {
    const std::uint64_t offset =
        frame * format_.frameBytes() + std::uint64_t{channel} * format_.sampleBytes;
    return read_(data_.subspan(static_cast<std::size_t>(offset), format_.sampleBytes).data());
  }

 private:
  SoundFormat format_;
  SampleReader read_;
  ByteView data_;
};

double largestStepAround(const Samples& samples, std::uint32_t channel, std::uint64_t frame,
                         std::uint64_t frameCount) {
  const std::uint64_t first = frame - std::min(frame, surroundings);
  const std::uint64_t last = std::min(frame + surroundings, frameCount - 1);
  double largest = 0;
  double previous = samples.at(first, channel);
  for (std::uint64_t i = first + 1; i <= last; ++i) {
    const double next = samples.at(i, channel);
    largest = std::max(largest, std::fabs(next - previous));
    previous = next;
  }
  return largest;
}

}  // namespace

std::optional<SeamJump> findSeamJump(ByteView content, const FileDescription& file,
                                     std::uint64_t start, std::uint64_t end) {
  if (start == 0 && end + 1 == *file.frames && end < longestCycle) return std::nullopt;
  const Samples samples(content, file);
  if (!samples.canBeRead()) return std::nullopt;
  const double floor = std::max(inaudible, 2 * samples.rounding());
  std::optional<SeamJump> worst;
  for (std::uint32_t channel = 0; channel < std::min(file.format->channels, mostChannels);
       ++channel) {
    const double jump = std::fabs(samples.at(end, channel) - samples.at(start, channel));
    if (!(jump > floor)) continue;
    const double step = std::max(largestStepAround(samples, channel, start, *file.frames),
                                 largestStepAround(samples, channel, end, *file.frames));
    if (jump > standsOut * step + floor && (!worst || jump > worst->jump))
      worst = SeamJump{jump, step};
  }
  return worst;
}

}  // namespace corvana
