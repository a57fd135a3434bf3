#include "vocabulary/note_name.hpp"

#include <algorithm>
#include <initializer_list>
#include <vector>

namespace corvana {
namespace {

constexpr std::int64_t notesInOctave = 12;
constexpr std::int64_t octaveOfMiddleC = 5;  // of those that start with note 0
constexpr std::int64_t highestNote = 127;

bool isDigit(char character) {
  return character >= '0' && character <= '9';
}

/// ASCII letters, digits and everything that is not ASCII, so that no letter of another script ends
/// a word; and what belongs to the name of a note.
bool isOfWord(std::string_view name, std::size_t at) {
  const char character = name[at];
  const bool isLetter = (character >= 'a' && character <= 'z') ||
                        (character >= 'A' && character <= 'Z') ||
                        static_cast<unsigned char>(character) >= 0x80;
  if (isLetter || isDigit(character) || character == '#') return true;
  // "C-1" is one word, "C-Pad", "Pad-1" and "C3-1" are two.
  const bool isSign = character == '-' && at > 0 && !isDigit(name[at - 1]) &&
                      at + 1 < name.size() && isDigit(name[at + 1]);
  if (!isSign) return false;
  const std::size_t start = name.find_last_of(" _-.,()[]", at - 1);
  const std::size_t length = at - (start == std::string_view::npos ? 0 : start + 1);
  return length == 1 || length == 2;
}

std::vector<std::string_view> wordsOf(std::string_view name) {
  std::vector<std::string_view> words;
  for (std::size_t at = 0; at < name.size();) {
    std::size_t end = at;
    while (end < name.size() && isOfWord(name, end))
      ++end;
    if (end > at) words.push_back(name.substr(at, end - at));
    at = end + 1;
  }
  return words;
}

/// Digits alone, with a sign at most.
std::optional<std::int64_t> numberOf(std::string_view word) {
  const bool isNegative = word.starts_with('-');
  word.remove_prefix(isNegative ? 1 : 0);
  if (word.empty() || word.size() > 3) return std::nullopt;
  std::int64_t number = 0;
  for (const char digit : word) {
    if (!isDigit(digit)) return std::nullopt;
    number = 10 * number + (digit - '0');
  }
  return isNegative ? -number : number;
}

std::optional<std::uint8_t> noteOf(std::string_view word, int middleC) {
  if (word.size() < 2) return std::nullopt;
  constexpr std::string_view letters = "c d ef g a b";
  const char letter = static_cast<char>(word[0] | 0x20);
  const std::size_t step = letter == ' ' ? std::string_view::npos : letters.find(letter);
  if (step == std::string_view::npos) return std::nullopt;
  std::int64_t note = static_cast<std::int64_t>(step);
  const bool isCapital = word[0] != letter;
  word.remove_prefix(1);
  const bool isSharp = word[0] == '#';
  const bool isFlat = word[0] == 'b' || (isCapital && word[0] == 'B');
  note += isSharp ? 1 : isFlat ? -1 : 0;
  if (isSharp || isFlat) word.remove_prefix(1);
  const std::optional<std::int64_t> octave = numberOf(word);
  // Octaves have one digit, which takes are numbered with more of: "B01".
  if (!octave || word.size() - (word[0] == '-' ? 1 : 0) != 1) return std::nullopt;
  note += notesInOctave * (*octave - middleC + octaveOfMiddleC);
  if (note < 0 || note > highestNote) return std::nullopt;
  return static_cast<std::uint8_t>(note);
}

/// A list, a range or a date: "2026-11-24".
bool isJoinedToNumber(std::string_view word, std::string_view name) {
  const auto begin = static_cast<std::size_t>(word.data() - name.data());
  const std::size_t end = begin + word.size();
  return (begin > 1 && name[begin - 1] == '-' && isDigit(name[begin - 2])) ||
         (end + 1 < name.size() && name[end] == '-' && isDigit(name[end + 1]));
}

bool isOneOfInAnyCase(std::string_view word, std::initializer_list<std::string_view> lowerCase) {
  std::string lower;
  for (const char character : word)
    lower += static_cast<char>(character | 0x20);
  return std::find(lowerCase.begin(), lowerCase.end(), lower) != lowerCase.end();
}

/// Whether the words around the number at this place say that it is no key.
bool countsSomethingElse(std::size_t at, const std::vector<std::string_view>& words) {
  if (at + 1 < words.size() && isOneOfInAnyCase(words[at + 1], {"bpm"})) return true;
  return at > 0 && isOneOfInAnyCase(words[at - 1], {"bpm", "loop", "mix", "no", "nr", "part",
                                                    "take", "track", "v", "version", "vol"});
}

/// The key that the number at this place tells, if it is one.
std::optional<std::uint8_t> keyAt(std::size_t at, const std::vector<std::string_view>& words,
                                  std::string_view name) {
  constexpr std::int64_t lowestKey = 21;
  constexpr std::int64_t highestKey = 108;
  const std::string_view word = words[at];
  const std::optional<std::int64_t> number = word.starts_with('0') ? std::nullopt : numberOf(word);
  if (!number || *number < lowestKey || *number > highestKey) return std::nullopt;
  if (isJoinedToNumber(word, name) || countsSomethingElse(at, words)) return std::nullopt;
  return static_cast<std::uint8_t>(*number);
}

}  // namespace

std::string noteName(std::int64_t note, int middleC) {
  constexpr const char* names[] = {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "A#", "B"};
  if (note < 0 || note > highestNote) return {};
  std::string name = names[note % notesInOctave];
  return name += std::to_string(note / notesInOctave - octaveOfMiddleC + middleC);
}

std::optional<std::uint8_t> noteInFileName(std::string_view name, int middleC) {
  if (const std::size_t dot = name.rfind('.'); dot != std::string_view::npos && dot > 0)
    name = name.substr(0, dot);
  const std::vector<std::string_view> words = wordsOf(name);
  for (auto word = words.rbegin(); word != words.rend(); ++word)
    if (const auto note = noteOf(*word, middleC)) return note;
  if (words.empty()) return std::nullopt;
  const auto first = keyAt(0, words, name);
  return first ? first : keyAt(words.size() - 1, words, name);
}

}  // namespace corvana
