#include "inspect/note_name.hpp"

namespace corvana {

std::string noteName(std::int64_t note, int middleC) {
  constexpr const char* names[] = {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "A#", "B"};
  constexpr std::int64_t notesInOctave = 12;
  constexpr std::int64_t octaveOfMiddleC = 5;  // of those that start with note 0
  if (note < 0 || note > 127) return {};
  std::string name = names[note % notesInOctave];
  return name += std::to_string(note / notesInOctave - octaveOfMiddleC + middleC);
}

}  // namespace corvana
