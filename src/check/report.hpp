// What a check has found so far, and how it finds its way in the file.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <vector>

#include "check/findings.hpp"
#include "inspect/file_description.hpp"

namespace corvana {

struct Report {
  ByteView content;  ///< the complete file
  const FileDescription& file;
  std::vector<Finding> findings = {};

  /// Behind maxFindings of them a last one counts.
  void add(Finding finding);
  void addError(const ConversionError& error, std::optional<std::uint64_t> offset = {});
  /// About a chunk; its ID and offset come before `values`.
  void addChunk(FindingKind kind, Severity severity, const ChunkEntry& chunk,
                std::initializer_list<MessageValue> values = {});
  /// Of a list that was cut, if it was.
  void addNotChecked(std::uint64_t count, std::optional<std::uint64_t> offset);

  /// The last of its ID, which is the one that counts; null where there is none.
  const ChunkEntry* chunk(std::string_view id) const;
  /// Of a byte in the body of that chunk; absent where there is none.
  std::optional<std::uint64_t> offsetOf(std::string_view id, std::uint64_t inBody = 0) const;
  /// As far as it is there.
  ByteView bodyOf(const ChunkEntry& entry) const;
};

/// A number as the value of a finding.
inline MessageValue valueOf(std::uint64_t number) {
  return static_cast<std::int64_t>(number);
}

/// For people: no more places than say something; `places` is 100 for two of them.
double rounded(double number, double places);

}  // namespace corvana
