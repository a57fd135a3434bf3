// Where C++ ends: records and exceptions become what C knows.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>

#include "c/corvana.h"
#include "vocabulary/bytes.hpp"

namespace corvana {

/// The size of a struct in its first version. One that has grown keeps it, in a specialisation.
template <typename Record>
inline constexpr std::size_t firstSize = sizeof(Record);
template <>
inline constexpr std::size_t firstSize<corvana_plan_info> = offsetof(corvana_plan_info,
                                                                     left_out_count);

/// Whether `record` is there and its size may be believed.
template <typename Record>
bool isUsable(const Record* record) {
  constexpr std::size_t largest = 4096;
  return record != nullptr && record->struct_size >= firstSize<Record> &&
         record->struct_size <= largest;
}

/// Gives the caller as much of a record as it knows, and zeros for what only it knows.
template <typename Record>
void fill(Record& to, Record record) {
  record.struct_size = to.struct_size;
  const std::size_t known = std::min(to.struct_size, sizeof(Record));
  auto* bytes = reinterpret_cast<std::uint8_t*>(&to);
  std::memcpy(bytes, &record, known);
  std::fill(bytes + known, bytes + record.struct_size, std::uint8_t{0});
}

/// As much of the caller's record as is known, and zeros for what only the library knows. Absent
/// where the caller asks for something that is not known.
template <typename Record>
std::optional<Record> taken(const Record& from) {
  const std::size_t known = std::min(from.struct_size, sizeof(Record));
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(&from);
  if (std::any_of(bytes + known, bytes + from.struct_size, [](auto byte) { return byte != 0; }))
    return std::nullopt;
  Record record{};
  std::memcpy(&record, bytes, known);
  return record;
}

/// Thrown where the caller's function does not want to go on.
struct Refusal {};

/// Fills `error`, unless it is null.
corvana_status badArgument(corvana_error* error, const char* text) noexcept;

/// Fills `error`, unless it is null, for the exception that is being handled.
corvana_status reportFailure(corvana_error* error) noexcept;

/// The status that `action` returns, or the one that stands for its exception.
template <typename Action>
corvana_status guarded(corvana_error* error, const Action& action) noexcept {
  if (error != nullptr && !isUsable(error)) return CORVANA_BAD_ARGUMENT;
  try {
    return action();
  } catch (...) {
    return reportFailure(error);
  }
}

/// Whether there are bytes where the caller says so.
inline bool areThere(const void* bytes, std::size_t size) {
  return bytes != nullptr || size == 0;
}

inline ByteView view(const void* bytes, std::size_t size) {
  return {static_cast<const std::uint8_t*>(bytes), size};
}

}  // namespace corvana
