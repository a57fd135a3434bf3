#include "convert/sample_kernels.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

// Byte shuffles need the compiler's vectors (GCC 12, any current Clang) and a processor that has
// the instruction: every 64-bit ARM, WebAssembly with its vectors, and x86 with SSSE3, which is
// asked for at run time.
#if defined(__has_builtin)
#if __has_builtin(__builtin_shufflevector)
#if defined(__x86_64__) || defined(__i386__)
#define CORVANA_BYTE_SHUFFLES [[gnu::target("ssse3")]]
#elif defined(__aarch64__) || defined(__wasm_simd128__)
#define CORVANA_BYTE_SHUFFLES
#endif
#endif
#endif

namespace corvana {
namespace {

using Byte = std::uint8_t;

/// Which byte of the source becomes byte `index` of the output, when bytes are reversed.
template <std::size_t sourceWidth, std::size_t outputWidth>
constexpr std::size_t reversedIndex(std::size_t index) {
  return index / outputWidth * sourceWidth + sourceWidth - 1 - index % outputWidth;
}

/// What changes in every byte: single-byte samples are signed in AIFF and unsigned in WAV.
template <std::size_t sourceWidth>
constexpr Byte inversion = sourceWidth == 1 ? 0x80 : 0;

/// What shuffles do in large steps, and the end that is left over by them. Compilers make vectors
/// of it where the widths are powers of two: GCC always, Clang where they are also equal and at
/// most two bytes.
template <std::size_t sourceWidth, std::size_t outputWidth>
void convertOneByOne(const Byte* __restrict source, Byte* __restrict output, std::size_t samples) {
  for (std::size_t s = 0; s < samples; ++s)
    for (std::size_t k = 0; k < outputWidth; ++k)
      output[s * outputWidth + k] =
          static_cast<Byte>(source[s * sourceWidth + sourceWidth - 1 - k] ^ inversion<sourceWidth>);
}

template <std::size_t sourceWidth, std::size_t outputWidth>
void keepFirstBytes(const Byte* __restrict source, Byte* __restrict output, std::size_t samples) {
  if constexpr (sourceWidth == outputWidth) {
    // A length of 0 may come with null pointers.
    if (samples != 0) std::memcpy(output, source, samples * sourceWidth);
  } else {
    for (std::size_t s = 0; s < samples; ++s)
      for (std::size_t k = 0; k < outputWidth; ++k)
        output[s * outputWidth + k] = source[s * sourceWidth + k];
  }
}

#ifdef CORVANA_BYTE_SHUFFLES

constexpr std::size_t vectorSize = 16;

/// A multiple of every width and of vectorSize.
constexpr std::size_t groupSize = 48;

using Vector [[gnu::vector_size(vectorSize)]] = Byte;

// The built-in form of memcpy: behind the checked one of hardened builds, Clang leaves a copy of
// every vector on the stack.
CORVANA_BYTE_SHUFFLES inline Vector loadVector(const Byte* source) {
  Vector bytes;
  __builtin_memcpy(&bytes, source, vectorSize);
  return bytes;
}

/// 16 bytes of a group's output from `first` on, for which the sequence counts 0 to 15.
template <std::size_t sourceWidth, std::size_t outputWidth, std::size_t first, std::size_t... k>
CORVANA_BYTE_SHUFFLES inline Vector shuffledBytes(const Byte* source, std::index_sequence<k...>) {
  // The last vector of a narrower output is not full; what fills it is not stored.
  constexpr std::size_t last = groupSize / sourceWidth * outputWidth - 1;
  constexpr std::array<std::size_t, vectorSize> from = {
      reversedIndex<sourceWidth, outputWidth>(std::min(first + k, last))...};
  constexpr std::size_t low = *std::min_element(from.begin(), from.end()) / vectorSize;
  constexpr std::size_t high = *std::max_element(from.begin(), from.end()) / vectorSize;
  const Vector lowBytes = loadVector(source + low * vectorSize);
  const Vector highBytes = loadVector(source + high * vectorSize);
  if constexpr (high - low <= 1) {
    return __builtin_shufflevector(lowBytes, highBytes,
                                   static_cast<int>(from[k] - low * vectorSize)...);
  } else {
    // A shuffle takes from two vectors; what the third has to give comes in a second one.
    constexpr std::size_t inBoth = 2 * vectorSize;
    const Vector bytes =
        __builtin_shufflevector(lowBytes, loadVector(source + vectorSize),
                                static_cast<int>(from[k] < inBoth ? from[k] : 0)...);
    return __builtin_shufflevector(
        bytes, highBytes, static_cast<int>(from[k] < inBoth ? k : from[k] - vectorSize)...);
  }
}

/// Converts a group; the sequence counts the vectors of its output.
template <std::size_t sourceWidth, std::size_t outputWidth, std::size_t... vector>
CORVANA_BYTE_SHUFFLES inline void convertGroup(const Byte* __restrict source,
                                               Byte* __restrict output,
                                               std::index_sequence<vector...>) {
  constexpr std::size_t size = groupSize / sourceWidth * outputWidth;
  // All loads come before the first store: taking turns with them is slower on some processors.
  const Vector bytes[] = {shuffledBytes<sourceWidth, outputWidth, vector * vectorSize>(
                              source, std::make_index_sequence<vectorSize>()) ^
                          inversion<sourceWidth>...};
  (__builtin_memcpy(output + vector * vectorSize, &bytes[vector],
                    std::min(vectorSize, size - vector * vectorSize)),
   ...);
}

/// Converts three whole vectors at a time, so that no load or store overlaps another. Vectors of
/// 5 samples of 24 bits, each stored over the 16th byte of the one before, need fewer shuffles
/// but are an eighth slower: such stores straddle the lines of the cache.
template <std::size_t sourceWidth, std::size_t outputWidth>
CORVANA_BYTE_SHUFFLES void convertByShuffles(const Byte* __restrict source, Byte* __restrict output,
                                             std::size_t samples) {
  constexpr std::size_t step = groupSize / sourceWidth;
  constexpr std::size_t outputVectors = (step * outputWidth + vectorSize - 1) / vectorSize;
  std::size_t done = 0;
  for (; samples - done >= step; done += step)
    convertGroup<sourceWidth, outputWidth>(source + done * sourceWidth, output + done * outputWidth,
                                           std::make_index_sequence<outputVectors>());
  convertOneByOne<sourceWidth, outputWidth>(source + done * sourceWidth,
                                            output + done * outputWidth, samples - done);
}

#endif

template <std::size_t sourceWidth, std::size_t outputWidth>
SampleKernel kernel(bool changesBytes, [[maybe_unused]] Processor processor) {
  if (!changesBytes) return keepFirstBytes<sourceWidth, outputWidth>;
#ifdef CORVANA_BYTE_SHUFFLES
  if (processor == Processor::shufflesBytes) return convertByShuffles<sourceWidth, outputWidth>;
#endif
  return convertOneByOne<sourceWidth, outputWidth>;
}

}  // namespace

Processor thisProcessor() {
#if defined(CORVANA_BYTE_SHUFFLES) && !(defined(__x86_64__) || defined(__i386__))
  return Processor::shufflesBytes;
#elif defined(CORVANA_BYTE_SHUFFLES)
  if (__builtin_cpu_supports("ssse3")) return Processor::shufflesBytes;
#endif
  return Processor::anyKind;
}

SampleKernel sampleKernel(const SampleConversion& conversion, Processor processor) {
  const bool reverses = conversion.reverseBytes;
  switch (10 * conversion.sourceWidth + conversion.outputWidth) {
    case 11:
      return kernel<1, 1>(conversion.turnSign, processor);
    case 21:
      return kernel<2, 1>(reverses, processor);
    case 22:
      return kernel<2, 2>(reverses, processor);
    case 31:
      return kernel<3, 1>(reverses, processor);
    case 32:
      return kernel<3, 2>(reverses, processor);
    case 33:
      return kernel<3, 3>(reverses, processor);
    case 41:
      return kernel<4, 1>(reverses, processor);
    case 42:
      return kernel<4, 2>(reverses, processor);
    case 43:
      return kernel<4, 3>(reverses, processor);
    case 88:
      return kernel<8, 8>(reverses, processor);
    default:
      return kernel<4, 4>(reverses, processor);
  }
}

void convertSamples(const SampleConversion& conversion, ByteView source,
                    std::span<std::uint8_t> output) {
  sampleKernel(conversion, thisProcessor())(source.data(), output.data(),
                                            output.size() / conversion.outputWidth);
}

}  // namespace corvana
