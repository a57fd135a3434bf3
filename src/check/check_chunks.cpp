#include <algorithm>
#include <set>
#include <span>
#include <string_view>

#include "aiff/aiff_format.hpp"
#include "check/checks.hpp"
#include "wav/wav_format.hpp"

namespace corvana {
namespace {

using Case = ConversionError::Case;

/// The chunks that a reader makes something of. Of them a file has one at most.
struct KnownChunk {
  std::string_view id;
  std::size_t leastSize = 0;
};
constexpr KnownChunk wavChunks[] = {{"fmt "},
                                    {"data"},
                                    {"smpl", wav_layout::samplerHeaderSize},
                                    {"inst", wav_layout::instrumentSize},
                                    {"cue ", wav_layout::cueHeaderSize}};
constexpr KnownChunk aiffChunks[] = {{"COMM"},
                                     {"SSND", aiff_layout::soundHeaderSize},
                                     {"MARK", aiff_layout::markerCountSize},
                                     {"INST", aiff_layout::instrumentSize}};

bool isID(std::string_view id) {
  return std::all_of(id.begin(), id.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

std::span<const KnownChunk> knownChunks(const Report& report) {
  if (report.file.isAIFF()) return aiffChunks;
  return wavChunks;
}

bool isKnown(const Report& report, const ChunkEntry& entry) {
  const auto known = knownChunks(report);
  return std::any_of(known.begin(), known.end(),
                     [&](const KnownChunk& one) { return one.id == entry.id; });
}

bool isLast(const Report& report, const ChunkEntry& entry) {
  return entry.offset + chunkHeaderSize + entry.presentSize == report.file.fileSize;
}

/// Whether readers find other chunks behind it than there are.
bool misleads(const Report& report, const ChunkEntry& entry) {
  return entry.padding == Padding::missing && !isLast(report, entry);
}

void checkPadding(Report& report, const ChunkEntry& entry) {
  if (entry.padding == Padding::missing)
    report.addChunk(FindingKind::paddingMissing,
                    misleads(report, entry) ? Severity::error : Severity::note, entry);
  if (entry.padding == Padding::other)
    report.addChunk(FindingKind::paddingNotZero, Severity::note, entry);
}

void checkRecordCount(Report& report, const ChunkEntry& entry) {
  const Fields fields(report.bodyOf(entry), byteOrderOf(report.file.chunks.container));
  std::uint64_t declared = 0;
  std::uint64_t held = 0;
  if (entry.id == "smpl") {
    declared = fields.u32(28);
    held = (entry.presentSize - wav_layout::samplerHeaderSize) / wav_layout::loopSize;
  } else if (entry.id == "cue ") {
    declared = fields.u32(0);
    held = (entry.presentSize - wav_layout::cueHeaderSize) / wav_layout::cuePointSize;
  } else if (entry.id == "MARK" && &entry == report.chunk("MARK")) {
    declared = fields.u16(0);
    held = report.file.markerCount;
  }
  if (declared > held)
    report.addChunk(FindingKind::countBeyondChunk, Severity::error, entry,
                    {valueOf(declared), valueOf(held)});
}

}  // namespace

bool checkContainer(Report& report) {
  const FileDescription& file = report.file;
  switch (file.chunks.container) {
    case Container::unknown:
      report.addError(ConversionError::unsupported(report.content.size() < fileHeaderSize
                                                       ? UnsupportedKind::tooShort
                                                       : UnsupportedKind::unknownFile),
                      0);
      return false;
    case Container::riff:
      report.addError(ConversionError(Case::notWAVE), 8);
      return false;
    case Container::form:
      report.addError(ConversionError(Case::notAIFF), 8);
      return false;
    default:
      break;
  }
  const std::uint64_t declared = file.chunks.declaredEnd;
  const bool lacksPadding =
      !file.chunks.chunks.empty() && file.chunks.chunks.back().padding == Padding::missing;
  // A container of odd size has a pad byte of its own; one that counts the pad byte that its last
  // chunk lacks has another finding already.
  const bool isRight = declared == file.fileSize ||
                       (declared % 2 != 0 && declared + 1 == file.fileSize) ||
                       (lacksPadding && declared == file.fileSize + 1);
  if (!isRight)
    report.add({FindingKind::containerSize,
                declared > file.fileSize ? Severity::error : Severity::warning,
                4,
                {},
                {},
                {valueOf(declared), valueOf(file.fileSize)}});
  return true;
}

void checkChunks(Report& report) {
  const FileDescription& file = report.file;
  std::set<std::string_view> seen;
  const auto& chunks = file.chunks.chunks;
  for (auto at = chunks.begin(); at != chunks.end(); ++at) {
    const ChunkEntry& entry = *at;
    if (!isID(entry.id)) {
      const bool hidesMore = std::any_of(at, chunks.end(), [&report](const ChunkEntry& one) {
        return isKnown(report, one) || misleads(report, one);
      });
      report.add({FindingKind::chunkID,
                  hidesMore ? Severity::error : Severity::warning,
                  entry.offset,
                  {},
                  {},
                  {valueOf(entry.offset)}});
      return;  // nothing behind it can be relied on
    }
    if (entry.presentSize < entry.declaredSize)
      report.addChunk(FindingKind::chunkBeyondFile, Severity::error, entry,
                      {valueOf(entry.declaredSize), valueOf(entry.presentSize)});
    checkPadding(report, entry);
    for (const KnownChunk& known : knownChunks(report)) {
      if (entry.id != known.id) continue;
      if (!seen.insert(known.id).second)
        report.addChunk(FindingKind::chunkDoubled, Severity::warning, entry);
      if (entry.presentSize < known.leastSize)
        report.addChunk(FindingKind::chunkTooShort, Severity::error, entry,
                        {valueOf(entry.presentSize), valueOf(known.leastSize)});
      else
        checkRecordCount(report, entry);
    }
  }
  report.addNotChecked(file.chunks.count - chunks.size(), {});
  if (const std::uint64_t trailing = file.fileSize - file.chunks.end; trailing != 0)
    report.add(
        {FindingKind::trailingBytes, Severity::note, file.chunks.end, {}, {}, {valueOf(trailing)}});
}

}  // namespace corvana
