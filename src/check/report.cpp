#include "check/report.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "vocabulary/chunks.hpp"

namespace corvana {

void Report::add(Finding finding) {
  if (findings.size() < maxFindings) {
    findings.push_back(std::move(finding));
    return;
  }
  if (findings.size() == maxFindings)
    findings.push_back({FindingKind::moreFindings, Severity::note, {}, {}, {}, {std::int64_t{0}}});
  Finding& last = findings.back();
  ++std::get<std::int64_t>(last.values.front());
  last.severity = std::max(last.severity, finding.severity);
}

void Report::addError(const ConversionError& error, std::optional<std::uint64_t> offset) {
  add({error, Severity::error, offset});
}

void Report::addChunk(FindingKind kind, Severity severity, const ChunkEntry& chunk,
                      std::initializer_list<MessageValue> values) {
  Finding finding{kind, severity, chunk.offset};
  finding.values = {chunk.id, valueOf(chunk.offset)};
  finding.values.insert(finding.values.end(), values);
  add(std::move(finding));
}

void Report::addNotChecked(std::uint64_t count, std::optional<std::uint64_t> offset) {
  if (count != 0) add({FindingKind::notChecked, Severity::note, offset, {}, {}, {valueOf(count)}});
}

const ChunkEntry* Report::chunk(std::string_view id) const {
  const auto& chunks = file.chunks.chunks;
  const auto found = std::find_if(chunks.rbegin(), chunks.rend(),
                                  [id](const ChunkEntry& entry) { return entry.id == id; });
  return found == chunks.rend() ? nullptr : &*found;
}

std::optional<std::uint64_t> Report::offsetOf(std::string_view id, std::uint64_t inBody) const {
  const ChunkEntry* const entry = chunk(id);
  if (entry == nullptr) return std::nullopt;
  return entry->offset + chunkHeaderSize + inBody;
}

ByteView Report::bodyOf(const ChunkEntry& entry) const {
  return content.subspan(static_cast<std::size_t>(entry.offset + chunkHeaderSize),
                         static_cast<std::size_t>(entry.presentSize));
}

double rounded(double number, double places) {
  return std::round(number * places) / places;
}

}  // namespace corvana
