// Records of equal size that lie one behind the other in the bytes of a file. A view is as small
// whatever their number, since each is only decoded when it is looked at.
#pragma once

#include <algorithm>
#include <cstddef>

#include "vocabulary/bytes.hpp"

namespace corvana {

/// Refers to bytes that have to outlive it. `decode` makes a record of its `recordSize` bytes.
template <typename Record, std::size_t recordSize, Record (*decode)(ByteView, ByteOrder)>
class RecordView {
 public:
  class Iterator {
   public:
    Iterator(ByteView rest, ByteOrder order) : rest_(rest), order_(order) {}
    Record operator*() const { return decode(rest_.first(recordSize), order_); }
    Iterator& operator++() {
      rest_ = rest_.subspan(recordSize);
      return *this;
    }
    bool operator==(const Iterator& other) const { return rest_.size() == other.rest_.size(); }

   private:
    ByteView rest_;
    ByteOrder order_;
  };

  RecordView() = default;
  /// The first `declared` records, or as many as `bytes` wholly holds.
  RecordView(ByteView bytes, std::size_t declared, ByteOrder order)
      : bytes_(bytes.first(std::min(declared, bytes.size() / recordSize) * recordSize)),
        order_(order) {}

  /// How many records there are.
  std::size_t size() const { return bytes_.size() / recordSize; }
  /// The first record.
  Iterator begin() const { return {bytes_, order_}; }
  /// Behind the last one.
  Iterator end() const { return {{}, order_}; }

 private:
  ByteView bytes_;
  ByteOrder order_ = ByteOrder::little;
};

}  // namespace corvana
