#include "convert/crc64.hpp"

#include <array>

namespace corvana {
namespace {

using Table = std::array<std::uint64_t, 256>;

constexpr std::uint64_t entry(const Table& table, std::uint64_t byte) {
  return table[static_cast<std::size_t>(byte & 0xFF)];
}

/// Table k is for a byte that k further ones follow, so that eight are taken at once.
constexpr std::array<Table, 8> makeTables() {
  constexpr std::uint64_t polynomial = 0xC96C'5795'D787'0F42;
  std::array<Table, 8> tables{};
  for (std::size_t byte = 0; byte < 256; ++byte) {
    std::uint64_t sum = byte;
    for (int bit = 0; bit < 8; ++bit)
      sum = sum >> 1 ^ (sum % 2 != 0 ? polynomial : 0);
    tables[0][byte] = sum;
  }
  for (std::size_t k = 1; k < tables.size(); ++k)
    for (std::size_t byte = 0; byte < 256; ++byte)
      tables[k][byte] = tables[k - 1][byte] >> 8 ^ entry(tables[0], tables[k - 1][byte]);
  return tables;
}

constexpr std::array<Table, 8> tables = makeTables();

}  // namespace

void Crc64::add(ByteView bytes) {
  const Fields fields(bytes, ByteOrder::little);
  std::size_t i = 0;
  std::uint64_t sum = state_;
  for (; bytes.size() - i >= 8; i += 8) {
    const std::uint64_t next = sum ^ fields.u64(i);
    sum = 0;
    for (std::size_t k = 0; k < 8; ++k)
      sum ^= entry(tables[7 - k], next >> 8 * k);
  }
  for (; i < bytes.size(); ++i)
    sum = sum >> 8 ^ entry(tables[0], sum ^ bytes[i]);
  state_ = sum;
}

}  // namespace corvana
