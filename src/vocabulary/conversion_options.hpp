// What a conversion does beyond the ordinary rules.
#pragma once

#include <cstdint>
#include <optional>

namespace corvana {

/// Which loops of the input an output gets.
enum class LoopChoice {
  all,    ///< as many as its format holds
  first,  ///< the first one that can be used; of an AIFF file the sustain loop, else the release
          ///< loop
  none,
};

/// As it is made: the ordinary rules.
struct ConversionOptions {
  /// Samples that are not integers, and orders of bytes that only AIFF-C and RIFX have, are
  /// converted as well.
  bool anyEncoding = false;
  LoopChoice loops = LoopChoice::all;  ///< of the input, that the output gets
  /// MIDI note, 0 to 127, for an input that has no key of its own: neither smpl nor inst chunk, no
  /// INST chunk.
  std::optional<std::uint8_t> rootKey = std::nullopt;
  /// The output carries what it takes to make the input of it again; an input that does so is made
  /// again, unless it has been edited since.
  bool reversible = false;
  bool keepNames = false;  ///< of markers, cue points and loops, with the notes on these
  bool keepTexts = false;  ///< of the file as a whole, ID3 tags included

  bool operator==(const ConversionOptions&) const = default;  ///< whether all are the same
  bool keepsMore() const { return keepNames || keepTexts; }   ///< than the ordinary rules
};

}  // namespace corvana
