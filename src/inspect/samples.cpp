#include "inspect/samples.hpp"

#include <algorithm>
#include <cstring>
#include <limits>

namespace corvana {
namespace {

/// An integer of `width` bytes, left-justified in 32 bits.
template <std::uint32_t width, ByteOrder order, bool isUnsigned>
struct Integer {
  using Value = std::int32_t;
  static Value read(const std::uint8_t* bytes) {
    std::uint32_t value = isUnsigned ? 0x8000'0000U : 0;
    for (std::uint32_t i = 0; i < width; ++i)
      value ^= std::uint32_t{bytes[i]}
               << (order == ByteOrder::big ? 24 - 8 * i : 32 - 8 * width + 8 * i);
    return static_cast<Value>(value);
  }
  static double inFullScale(Value value) { return value / 2147483648.0; }
};

/// `Bits` as std::bit_cast gives them, which not every standard library has: Debian 12's Emscripten
/// brings none.
template <typename Number, typename Bits, ByteOrder order>
struct FloatingPoint {
  static_assert(sizeof(Number) == sizeof(Bits));
  using Value = Number;
  static Value read(const std::uint8_t* bytes) {
    Bits bits = 0;
    for (std::size_t i = 0; i < sizeof(Bits); ++i)
      bits |= Bits{bytes[i]} << 8 * (order == ByteOrder::big ? sizeof(Bits) - 1 - i : i);
    Number number = 0;
    std::memcpy(&number, &bits, sizeof number);
    return number;
  }
  static double inFullScale(Value value) { return value; }
};

template <ByteOrder order, bool isUnsigned, typename Use>
auto withInteger(std::uint32_t width, const Use& use) {
  switch (width) {
    case 1:
      return use(Integer<1, order, isUnsigned>());
    case 2:
      return use(Integer<2, order, isUnsigned>());
    case 3:
      return use(Integer<3, order, isUnsigned>());
    case 4:
      return use(Integer<4, order, isUnsigned>());
    default:
      return decltype(use(Integer<1, order, isUnsigned>()))();
  }
}

template <ByteOrder order, typename Use>
auto withSample(const SoundFormat& format, const Use& use) {
  if (format.kind == SampleKind::floatingPoint) {
    if (format.sampleBytes == 4) return use(FloatingPoint<float, std::uint32_t, order>());
    if (format.sampleBytes == 8) return use(FloatingPoint<double, std::uint64_t, order>());
  }
  const std::uint32_t width = format.kind == SampleKind::integer ? format.sampleBytes : 0;
  return format.isUnsigned ? withInteger<order, true>(width, use)
                           : withInteger<order, false>(width, use);
}

/// What `use` makes of the way in which the samples are stored; nothing where it is not known here.
template <typename Use>
auto withSample(const SoundFormat& format, const Use& use) {
  return format.order == ByteOrder::big ? withSample<ByteOrder::big>(format, use)
                                        : withSample<ByteOrder::little>(format, use);
}

template <typename Sample>
Extent extentOf(const std::uint8_t* bytes, std::size_t sampleBytes, std::size_t count) {
  // What is no number compares as neither, and is left out.
  using Limits = std::numeric_limits<typename Sample::Value>;
  auto lowest = Limits::max();
  auto highest = Limits::lowest();
  for (std::size_t i = 0; i < count; ++i) {
    const auto value = Sample::read(bytes + i * sampleBytes);
    lowest = value < lowest ? value : lowest;
    highest = value > highest ? value : highest;
  }
  if (highest < lowest) return {};
  return {Sample::inFullScale(lowest), Sample::inFullScale(highest)};
}

}  // namespace

SampleReader sampleReader(const SoundFormat& format) {
  return withSample(format, [](auto sample) -> SampleReader {
    return [](const std::uint8_t* bytes) {
      using Sample = decltype(sample);
      return Sample::inFullScale(Sample::read(bytes));
    };
  });
}

std::vector<Extent> waveform(ByteView frames, const SoundFormat& format, std::size_t columns) {
  if (format.frameBytes() == 0 || frames.size() < format.frameBytes()) return {};
  const std::uint64_t count = frames.size() / format.frameBytes();
  return withSample(format, [&](auto sample) {
    std::vector<Extent> extents(columns);
    for (std::size_t column = 0; column < columns; ++column) {
      // In this order the product stays below 2^64: a file has fewer than 2^32 frames.
      const std::uint64_t first = std::min(count * column / columns, count - 1);
      const std::uint64_t end = std::max(count * (column + 1) / columns, first + 1);
      extents[column] = extentOf<decltype(sample)>(
          frames.data() + first * format.frameBytes(), format.sampleBytes,
          static_cast<std::size_t>((end - first) * format.channels));
    }
    return extents;
  });
}

}  // namespace corvana
