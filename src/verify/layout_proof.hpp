// What has to be right about the chunks of an output, whatever they hold.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "verify/differences.hpp"
#include "vocabulary/bytes.hpp"
#include "vocabulary/chunks.hpp"

namespace corvana {

/// Which of its chunks a file is read by: the last one of this ID. Empty where there is none.
Chunk lastChunk(ByteView file, ByteOrder order, std::string_view id);

/// Two digits a byte.
std::string hexText(ByteView bytes);

/// Adds what is wrong with the declared sizes, the pad bytes and the number of the chunks. `known`
/// are the IDs of which a file has one each.
void compareLayout(ByteView file, ByteOrder order, std::initializer_list<std::string_view> known,
                   Differences& differences);

/// Adds a difference where the file has other chunks than these, in this order.
void compareChunkOrder(ByteView file, ByteOrder order,
                       const std::vector<std::string_view>& promised, Differences& differences);

/// Adds a difference where the body of a chunk, as far as it is there, is larger or smaller than
/// what it has to hold.
void compareChunkSize(const Chunk& chunk, std::uint64_t promised, Differences& differences);

/// Compares fields of one chunk with what has to be in them.
class FieldProof {
 public:
  FieldProof(const Chunk& chunk, ByteOrder order, Differences& differences)
      : chunk_(chunk), fields_(chunk.body, order), differences_(differences) {}

  void u16(std::size_t offset, std::uint16_t promised) {
    compare(offset, fields_.u16(offset), promised);
  }
  void u32(std::size_t offset, std::uint32_t promised) {
    compare(offset, fields_.u32(offset), promised);
  }
  /// The difference is given in hexadecimal digits.
  void bytes(std::size_t offset, ByteView promised);

  const Fields& fields() const { return fields_; }

 private:
  void compare(std::size_t offset, std::int64_t found, std::int64_t promised);

  const Chunk& chunk_;
  Fields fields_;
  Differences& differences_;
};

}  // namespace corvana
