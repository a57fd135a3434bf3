// The chunk in which a file carries the file that it was made of: all bytes but the samples, which
// the output holds anyway.
#pragma once

#include <cstdint>
#include <optional>

#include "convert/conversion_plan.hpp"
#include "vocabulary/bytes.hpp"

namespace corvana {

/// A file that can be put together again: prefix, samples, suffix.
struct Capsule {
  std::uint64_t originalSum = 0;  ///< Crc64 of the whole original
  /// Crc64 of what the writer makes of the output's records around its samples, with the samples in
  /// the middle where hasLostBits; then of names and texts.
  std::uint64_t outputSum = 0;
  std::uint32_t frameCount = 0;  ///< between prefix and suffix
  std::uint16_t channels = 0;
  SampleConversion conversion = {};  ///< from the original to the output
  bool keepsNames = false;           ///< ConversionOptions::keepNames
  bool keepsTexts = false;           ///< ConversionOptions::keepTexts
  ByteView prefix = {};              ///< of the original, ahead of its samples
  ByteView suffix = {};              ///< of the original, behind them
  ByteView samples = {};             ///< of the original, where hasLostBits; else empty

  std::uint64_t sampleBytes() const {  ///< of the original between prefix and suffix
    return std::uint64_t{frameCount} * channels * conversion.sourceWidth;
  }
  /// Whether the samples of the output do not tell those of the original.
  bool hasLostBits() const { return conversion.outputWidth != conversion.sourceWidth; }
};

/// Appends the chunk to the output's trailer, which has an even end: "APPL" in an AIFF file, "crvn"
/// in a WAV file.
void appendCapsule(ByteBuffer& trailer, const Capsule& capsule, bool isWAV);

/// What the last such chunk of a file says, referring to the file's bytes. Absent without one that
/// is whole and contradicts itself nowhere. `offset` is that of the chunk's body, absent where
/// there is no such chunk at all.
std::optional<Capsule> findCapsule(ByteView file, bool isWAV, std::optional<std::uint64_t>& offset);

}  // namespace corvana
