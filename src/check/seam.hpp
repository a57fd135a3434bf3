// Whether a loop clicks.
#pragma once

#include <cstdint>
#include <optional>

#include "inspect/file_description.hpp"

namespace corvana {

/// How far the signal jumps where a loop goes back, and the largest step from one frame to the next
/// around it. Both in parts of full scale.
struct SeamJump {
  double jump = 0;
  double largestStep = 0;
};

/// The jump of a loop that goes from its last frame to its first one, if it stands out: it is more
/// than four times the largest step within 1024 frames of the loop's start and of its end, in the
/// same channel, by more than a thousandth of full scale and more than the rounding of the samples.
/// Loud or bright material has large steps of its own, so it gives no false alarm. A loop over a
/// whole file of up to 4096 frames is one cycle of a wave, whose edge may lie there: it has no
/// seam. Samples that are compressed or logarithmic are not looked at, nor channels behind the
/// 32nd. `start` to `end` (inclusive) lie inside the samples.
std::optional<SeamJump> findSeamJump(ByteView content, const FileDescription& file,
                                     std::uint64_t start, std::uint64_t end);

}  // namespace corvana
