// The values of samples as a file stores them: integers and floating point, in either byte order.
#pragma once

#include <cstdint>
#include <vector>

#include "inspect/file_description.hpp"
#include "vocabulary/bytes.hpp"

namespace corvana {

/// Reads the sample at `bytes`, in parts of full scale.
using SampleReader = double (*)(const std::uint8_t* bytes);

/// Null for samples that are compressed, logarithmic or unknown.
SampleReader sampleReader(const SoundFormat& format);

/// The lowest and the highest of some samples, in parts of full scale.
struct Extent {
  double lowest = 0;
  double highest = 0;
};

/// A picture of a sound, all channels in one: `frames` in as many stretches of nearly equal length
/// as `columns` says. Where there are fewer frames, they come up in several of them. Empty where
/// the samples cannot be read, or there is no whole frame.
std::vector<Extent> waveform(ByteView frames, const SoundFormat& format, std::size_t columns);

}  // namespace corvana
