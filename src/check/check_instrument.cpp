#include <algorithm>
#include <cmath>
#include <optional>
#include <set>
#include <string>

#include "check/checks.hpp"
#include "wav/wav_format.hpp"

namespace corvana {
namespace {

constexpr int highestNote = 127;
constexpr int mostDetune = 50;  // cents

std::optional<std::uint64_t> offsetOfMarker(const Report& report, std::size_t index) {
  if (report.file.isAIFF()) return report.offsetOf("MARK");
  return report.offsetOf("cue ", wav_layout::cueHeaderSize + index * wav_layout::cuePointSize);
}

void checkRootKey(Report& report, const char* id, std::int64_t note) {
  if (note < 0 || note > highestNote)
    report.add({FindingKind::rootKey,
                Severity::warning,
                report.offsetOf(id),
                {},
                {},
                {std::string(id), note}});
}

void checkRange(Report& report, FindingKind kind, const char* id, int low, int high) {
  if (low > high || low < 0 || high > highestNote)
    report.add({kind,
                Severity::warning,
                report.offsetOf(id),
                {},
                {},
                {std::int64_t{low}, std::int64_t{high}}});
}

}  // namespace

void checkMarkers(Report& report) {
  const FileDescription& file = report.file;
  std::set<std::int64_t> seen;
  const auto& markers = file.isAIFF() ? file.markers : file.cuePoints;
  for (std::size_t i = 0; i < markers.size(); ++i) {
    const MarkerDescription& marker = markers[i];
    const auto offset = offsetOfMarker(report, i);
    if (!seen.insert(marker.id).second) {
      const bool loopNeedsIt =
          std::any_of(file.loops.begin(), file.loops.end(), [&](const LoopDescription& loop) {
            return loop.role && (loop.beginMarker == marker.id || loop.endMarker == marker.id);
          });
      report.add({FindingKind::markerDoubled,
                  loopNeedsIt ? Severity::error : Severity::warning,
                  offset,
                  marker.position,
                  {},
                  {marker.id}});
    }
    if (file.isAIFF() && marker.id < 1)
      report.add(
          {FindingKind::markerID, Severity::warning, offset, marker.position, {}, {marker.id}});
    if (file.frames && marker.position > *file.frames)
      report.add({FindingKind::markerBehindData,
                  Severity::warning,
                  offset,
                  marker.position,
                  {},
                  {marker.id, std::int64_t{marker.position}, valueOf(*file.frames)}});
  }
  report.addNotChecked(file.markerCount - markers.size(), report.offsetOf("cue "));
  for (const std::int64_t id : file.strayLabels)
    report.add({FindingKind::strayLabel, Severity::warning, report.offsetOf("LIST"), {}, {}, {id}});
}

void checkKeys(Report& report) {
  const FileDescription& file = report.file;
  if (file.sampler) checkRootKey(report, "smpl", file.sampler->unityNote);
  if (const auto& instrument = file.instrument) {
    const char* const id = file.isAIFF() ? "INST" : "inst";
    checkRootKey(report, id, instrument->baseNote);
    if (std::abs(instrument->detune) > mostDetune)
      report.add({FindingKind::fineTune,
                  Severity::warning,
                  report.offsetOf(id, 1),
                  {},
                  {},
                  {std::string(id), std::int64_t{instrument->detune}}});
    checkRange(report, FindingKind::keyRange, id, instrument->lowNote, instrument->highNote);
    checkRange(report, FindingKind::velocityRange, id, instrument->lowVelocity,
               instrument->highVelocity);
  }
  if (file.tuningsDisagree()) {
    const double cents = file.sampler->pitch() - file.instrument->pitch();
    report.add({FindingKind::tuningsDisagree,
                Severity::warning,
                report.offsetOf("smpl"),
                {},
                {},
                {rounded(std::fabs(cents), 100)}});
  }
}

}  // namespace corvana
