// The language in which a person reads the engine's texts.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace corvana {

/// English, which the texts are written in. Another language overrides both. Any thread.
class Language {
 public:
  virtual ~Language() = default;

  /// The text of this language for an English one.
  virtual std::string localised(const char* key) const;

  /// A text that depends on a number: the form for `count`, with the number in place of "%ld".
  /// English uses `singular` for exactly 1, `plural` otherwise.
  virtual std::string localisedCount(const char* singular, const char* plural,
                                     std::int64_t count) const;
};

/// `text` with `count` in place of its "%ld".
std::string insertCount(std::string text, std::string_view count);

/// Does nothing but to mark a text for the translators' catalogue.
constexpr const char* translatable(const char* key) {
  return key;
}

}  // namespace corvana
