// MIDI notes as people call them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvana {

/// "C4" or "F#-1"; `middleC` is the octave that note 60 belongs to. Empty for what is no MIDI note.
std::string noteName(std::int64_t note, int middleC);

/// The note that the name of a file tells, the last one of several: "Piano C#3.wav", "bass_a2",
/// "Strings Bb-1 soft". Letters of either case, "#" or "b" behind those of sharp and flat notes
/// ("B" behind a capital), an octave of one digit, and the ends of words around them. Without any,
/// a whole number from 21 to 108, the keys of a piano, where it is the first or the last word and
/// the words around it do not say what else it counts: "60_Pad", but not "Take 60" or "90 bpm".
std::optional<std::uint8_t> noteInFileName(std::string_view name, int middleC);

}  // namespace corvana
