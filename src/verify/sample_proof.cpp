#include "verify/sample_proof.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <string>
#include <utility>

#include "verify/layout_proof.hpp"

// What it takes is said in sample_kernels.cpp, with which a proof must have nothing in common.
#if defined(__has_builtin)
#if __has_builtin(__builtin_shufflevector)
#if defined(__x86_64__) || defined(__i386__)
#define CORVANA_PROOF_SHUFFLES [[gnu::target("ssse3")]]
#elif defined(__aarch64__)
#define CORVANA_PROOF_SHUFFLES
#endif
#endif
#endif

namespace corvana {
namespace {

constexpr std::size_t maxWidth = 4;  ///< bytes

/// What to do to an input's value, left-justified in 32 bits, before it has to be the output's.
struct Change {
  std::uint32_t kept = 0;    ///< bits
  std::uint32_t turned = 0;  ///< the top bit, from unsigned to signed or back

  std::uint32_t of(std::uint32_t value) const { return (value & kept) ^ turned; }
};

std::uint32_t valueOf(const std::uint8_t* sample, std::size_t width, ByteOrder order) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < width; ++i)
    value = value << 8 | sample[order == ByteOrder::big ? i : width - 1 - i];
  return static_cast<std::uint32_t>(std::uint64_t{value} << (8 * (maxWidth - width)));
}

/// The value of four bytes, in one step: compilers do not see through valueOf in every loop.
std::uint32_t valueOfFour(const std::uint8_t* sample, ByteOrder order) {
  std::uint32_t value = 0;
  std::memcpy(&value, sample, sizeof value);
  const bool isBig = std::endian::native == std::endian::big;
  return (order == ByteOrder::big) == isBig ? value : __builtin_bswap32(value);
}

/// How samples lie in a file, known to the compiler.
template <std::size_t bytes, ByteOrder byteOrder>
struct Layout {
  static constexpr std::size_t width = bytes;
  static constexpr ByteOrder order = byteOrder;
  static constexpr std::uint32_t bits = ~std::uint32_t{0} << (8 * (maxWidth - width));  ///< used

  static std::uint32_t value(const std::uint8_t* sample) {
    return valueOf(sample, width, byteOrder);
  }
  /// The same where another sample follows, but for the bits that are not used: three bytes are
  /// quicker to read as four.
  static std::uint32_t valueAhead(const std::uint8_t* sample) {
    if constexpr (width < 3) return value(sample);
    const std::uint32_t four = valueOfFour(sample, byteOrder);
    return width == 3 && byteOrder == ByteOrder::little ? four << 8 : four;
  }
};

template <typename Use>
auto withLayoutOf(const SampleField& field, const Use& use) {
  const bool isBig = field.order == ByteOrder::big;
  switch (field.width) {
    case 1:
      return use(Layout<1, ByteOrder::big>());
    case 2:
      return isBig ? use(Layout<2, ByteOrder::big>()) : use(Layout<2, ByteOrder::little>());
    case 3:
      return isBig ? use(Layout<3, ByteOrder::big>()) : use(Layout<3, ByteOrder::little>());
    default:
      return isBig ? use(Layout<4, ByteOrder::big>()) : use(Layout<4, ByteOrder::little>());
  }
}

/// Whether `count` samples are as they should be. Says it of all at once: without a way out of the
/// loop, the compiler makes vectors of it.
template <typename Input, typename Output>
bool areEqual(const std::uint8_t* input, const std::uint8_t* output, std::size_t count,
              Change change) {
  change.kept &= Input::bits;
  // With some widths, samples that need not wait for each other make it quicker.
  constexpr std::size_t lanes = Output::width == 3 ? 4 : 1;
  std::array<std::uint32_t, lanes> different{};
  std::size_t i = 0;
  for (; i + lanes < count; i += lanes)
    for (std::size_t lane = 0; lane < lanes; ++lane)
      different[lane] |= change.of(Input::valueAhead(input + (i + lane) * Input::width)) ^
                         Output::valueAhead(output + (i + lane) * Output::width);
  for (std::uint32_t& lane : different)
    lane &= Output::bits;
  for (; i < count; ++i)
    different[0] |= change.of(Input::value(input + i * Input::width)) ^
                    Output::value(output + i * Output::width);
  return std::all_of(different.begin(), different.end(),
                     [](std::uint32_t bits) { return bits == 0; });
}

#ifdef CORVANA_PROOF_SHUFFLES

constexpr std::size_t vectorSize = 16;

using Vector [[gnu::vector_size(vectorSize)]] = std::uint8_t;

CORVANA_PROOF_SHUFFLES inline Vector vectorAt(const std::uint8_t* bytes) {
  Vector vector;
  __builtin_memcpy(&vector, bytes, vectorSize);
  return vector;
}

/// Which byte of a sample has a place, 0 the most significant one; also which place a byte has.
template <typename Of>
constexpr std::size_t placed(std::size_t place) {
  return Of::order == ByteOrder::big ? place : Of::width - 1 - place;
}

/// The same of samples that keep as many bytes as the output has, as many at once as fill a vector.
/// The sequence counts its bytes.
template <typename Input, typename Output, std::size_t... byte>
CORVANA_PROOF_SHUFFLES bool areShuffled(const std::uint8_t* input, const std::uint8_t* output,
                                        std::size_t count, Change change,
                                        std::index_sequence<byte...> /*bytes*/) {
  constexpr std::size_t step = vectorSize / Input::width;
  constexpr Vector isCompared = {(byte / Output::width < step ? 0xFF : 0)...};
  constexpr Vector isTop = {(placed<Output>(byte % Output::width) == 0 ? 0x80 : 0)...};
  const Vector turned = change.turned == 0 ? Vector{} : isTop;
  Vector different = {};
  std::size_t done = 0;
  // Vectors reach into the samples behind them.
  for (; (count - done) * Output::width >= vectorSize; done += step) {
    const Vector bytes = vectorAt(input + done * Input::width);
    const Vector expected = __builtin_shufflevector(
        bytes, bytes,
        static_cast<int>(byte / Output::width % step * Input::width +
                         placed<Input>(placed<Output>(byte % Output::width)))...);
    different |= expected ^ turned ^ vectorAt(output + done * Output::width);
  }
  different &= isCompared;
  std::array<std::uint64_t, 2> bits{};
  __builtin_memcpy(bits.data(), &different, vectorSize);
  return (bits[0] | bits[1]) == 0 &&
         areEqual<Input, Output>(input + done * Input::width, output + done * Output::width,
                                 count - done, change);
}

template <typename Input, typename Output>
bool areShuffled(const std::uint8_t* input, const std::uint8_t* output, std::size_t count,
                 Change change) {
  return areShuffled<Input, Output>(input, output, count, change,
                                    std::make_index_sequence<vectorSize>());
}

bool canShuffle() {
#ifdef __aarch64__
  return true;
#else
  return __builtin_cpu_supports("ssse3");
#endif
}

#endif

/// The same of samples of eight bytes.
template <bool isReversed>
bool areEqualEights(const std::uint8_t* input, const std::uint8_t* output, std::size_t count,
                    Change /*none*/) {
  std::uint64_t different = 0;
  for (std::size_t i = 0; i < count; ++i) {
    std::uint64_t expected = 0;
    std::uint64_t found = 0;
    std::memcpy(&expected, input + 8 * i, sizeof expected);
    std::memcpy(&found, output + 8 * i, sizeof found);
    different |= (isReversed ? __builtin_bswap64(expected) : expected) ^ found;
  }
  return different == 0;
}

using AreEqual = bool (*)(const std::uint8_t* input, const std::uint8_t* output, std::size_t count,
                          Change change);

AreEqual comparisonOf(const SampleField& input, const SampleField& output,
                      [[maybe_unused]] Change change) {
  if (input.width == 8)
    return input.order == output.order ? areEqualEights<false> : areEqualEights<true>;
  return withLayoutOf(input, [&](auto from) {
    return withLayoutOf(output, [&](auto to) -> AreEqual {
      using Input = decltype(from);
      using Output = decltype(to);
#ifdef CORVANA_PROOF_SHUFFLES
      if constexpr (Input::width >= Output::width)
        if ((change.kept & Input::bits) == Output::bits && canShuffle())
          return areShuffled<Input, Output>;
#endif
      return areEqual<Input, Output>;
    });
  });
}

const std::uint8_t* addressOf(const SampleField& field, std::uint64_t sample) {
  return field.file.data() + field.offset + static_cast<std::size_t>(sample) * field.width;
}

/// The value as a number of `width` bytes.
std::int64_t signedNumber(std::uint32_t value, std::uint32_t width) {
  return static_cast<std::int32_t>(value) >> (8 * (maxWidth - width));
}

/// The bytes of a sample, the most significant one first.
std::string bitsOf(const SampleField& field, std::uint64_t sample) {
  const std::uint8_t* const first = addressOf(field, sample);
  ByteBuffer bytes(first, first + field.width);
  if (field.order == ByteOrder::little) std::reverse(bytes.begin(), bytes.end());
  return hexText(bytes);
}

/// What a sample of the input and of the output are; the same where it is as it should be.
struct Sample {
  MessageValue expected;
  MessageValue found;
};

}  // namespace

void compareSamples(const SampleField& input, const SampleField& output, const SampleRange& range,
                    Differences& differences, const ProofHandler& progress) {
  constexpr std::uint64_t blockSamples = 4096;
  constexpr std::uint64_t progressSamples = 128 * blockSamples;
  constexpr std::uint32_t topBit = 0x8000'0000;
  const bool isInteger = range.encoding == SampleEncoding::integer;
  const std::uint32_t keptWidth = isInteger ? range.keptWidth : maxWidth;
  const Change change{~std::uint32_t{0} << (8 * (maxWidth - keptWidth)),
                      input.isUnsigned != output.isUnsigned ? topBit : 0};
  const std::uint32_t toSigned = output.isUnsigned ? topBit : 0;
  const std::uint32_t shownWidth = std::max(range.keptWidth, output.width);
  const auto valuesOf = [&](std::uint64_t sample) -> Sample {
    if (!isInteger) return {bitsOf(input, sample), bitsOf(output, sample)};
    const std::uint32_t expected =
        change.of(valueOf(addressOf(input, sample), input.width, input.order));
    const std::uint32_t found = valueOf(addressOf(output, sample), output.width, output.order);
    if (found == expected) return {};
    return {signedNumber(expected ^ toSigned, shownWidth),
            signedNumber(found ^ toSigned, shownWidth)};
  };
  const std::uint64_t sampleCount = range.frames * range.channels;
  const AreEqual areEqual = comparisonOf(input, output, change);

  for (std::uint64_t done = 0; done < sampleCount; done += blockSamples) {
    if (progress && done % progressSamples == 0)
      progress({static_cast<double>(done) / static_cast<double>(sampleCount),
                input.offset + done * input.width, output.offset + done * output.width});
    const std::uint64_t end = std::min(done + blockSamples, sampleCount);
    if (areEqual(addressOf(input, done), addressOf(output, done),
                 static_cast<std::size_t>(end - done), change))
      continue;
    for (std::uint64_t sample = done; sample < end; ++sample) {
      Sample values = valuesOf(sample);
      if (values.found == values.expected) continue;
      differences.add({.kind = DifferenceKind::sample,
                       .frame = static_cast<std::int64_t>(sample / range.channels),
                       .channel = static_cast<std::int64_t>(sample % range.channels + 1),
                       .found = std::move(values.found),
                       .expected = std::move(values.expected),
                       .offset = output.offset + sample * output.width});
    }
  }
}

}  // namespace corvana
