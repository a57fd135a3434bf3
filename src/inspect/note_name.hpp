// MIDI notes as people call them.
#pragma once

#include <cstdint>
#include <string>

namespace corvana {

/// "C4" or "F#-1"; `middleC` is the octave that note 60 belongs to. Empty for what is no MIDI note.
std::string noteName(std::int64_t note, int middleC);

}  // namespace corvana
