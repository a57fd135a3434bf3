#include <algorithm>
#include <utility>
#include <vector>

#include "check/checks.hpp"
#include "check/seam.hpp"
#include "wav/wav_format.hpp"

namespace corvana {
namespace {

constexpr std::size_t mostSeams = 256;  ///< of a hostile file

LoopName nameOf(const LoopDescription& loop) {
  if (loop.role) return *loop.role;
  return loop.number;
}

std::optional<std::uint64_t> offsetOfLoop(const Report& report, const LoopDescription& loop) {
  constexpr std::size_t sustainOffset = 8;
  constexpr std::size_t releaseOffset = 14;
  if (loop.role)
    return report.offsetOf("INST", *loop.role == LoopRole::sustain ? sustainOffset : releaseOffset);
  return report.offsetOf("smpl",
                         wav_layout::samplerHeaderSize +
                             static_cast<std::uint64_t>(loop.number - 1) * wav_layout::loopSize);
}

void addLoop(Report& report, FindingKind kind, Severity severity, const LoopDescription& loop,
             std::int64_t frame, std::initializer_list<MessageValue> values) {
  report.add({kind, severity, offsetOfLoop(report, loop), frame, nameOf(loop), values});
}

/// Whether its frames are all there.
bool checkLoop(Report& report, const LoopDescription& loop) {
  if (loop.kind == LoopKind::unknown)
    addLoop(report, FindingKind::loopType, Severity::warning, loop, loop.start.value_or(0),
            {loop.type});
  if (!loop.start)
    addLoop(report, FindingKind::loopMarkerMissing, Severity::error, loop, 0,
            {std::int64_t{loop.beginMarker}});
  if (!loop.end)
    addLoop(report, FindingKind::loopMarkerMissing, Severity::error, loop, 0,
            {std::int64_t{loop.endMarker}});
  if (!loop.start || !loop.end) return false;
  if (*loop.end < *loop.start) {
    addLoop(report, FindingKind::loopEmpty, Severity::error, loop, *loop.start,
            {*loop.start, *loop.end});
    return false;
  }
  if (!report.file.frames) return false;
  const auto frames = static_cast<std::int64_t>(*report.file.frames);
  if (*loop.end < frames) return true;
  // An AIFF marker lies between frames; there nobody can mistake one end for the other.
  if (*loop.end == frames && *loop.start < frames && !loop.role)
    addLoop(report, FindingKind::loopEndExclusive, Severity::warning, loop, *loop.end,
            {*loop.end, frames - 1});
  else
    addLoop(report, FindingKind::loopBehindData, Severity::error, loop, *loop.end,
            {*loop.start, *loop.end, frames - 1});
  return false;
}

void checkSeam(Report& report, const LoopDescription& loop) {
  if (loop.kind == LoopKind::alternating) return;  // turns round, and so has none
  const auto seam =
      findSeamJump(report.content, report.file, static_cast<std::uint64_t>(*loop.start),
                   static_cast<std::uint64_t>(*loop.end));
  if (seam)
    addLoop(report, FindingKind::loopSeam, Severity::warning, loop, *loop.end,
            {rounded(seam->jump, 10'000), rounded(seam->largestStep, 10'000)});
}

/// Loops inside others are as they should be; those that share a part are not.
void checkOverlaps(Report& report, std::vector<const LoopDescription*> loops) {
  std::sort(loops.begin(), loops.end(), [](const LoopDescription* a, const LoopDescription* b) {
    return std::pair(*a->start, -*a->end) < std::pair(*b->start, -*b->end);
  });
  std::vector<const LoopDescription*> around;  // each inside the one before
  for (const LoopDescription* const loop : loops) {
    while (!around.empty() && *around.back()->end < *loop->start)
      around.pop_back();
    if (!around.empty() && *around.back()->end < *loop->end)
      addLoop(report, FindingKind::loopOverlap, Severity::warning, *loop, *loop->start,
              {*around.back()->start});
    around.push_back(loop);
  }
}

}  // namespace

void checkLoops(Report& report) {
  std::vector<const LoopDescription*> sound;  // those that could play
  for (const LoopDescription& loop : report.file.loops)
    if (checkLoop(report, loop)) sound.push_back(&loop);
  for (std::size_t i = 0; i < std::min(sound.size(), mostSeams); ++i)
    checkSeam(report, *sound[i]);
  checkOverlaps(report, std::move(sound));
  report.addNotChecked(report.file.loopCount - report.file.loops.size(), report.offsetOf("smpl"));
}

}  // namespace corvana
