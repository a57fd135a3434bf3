// The user's language: translation through gettext catalogues whose keys are the English texts,
// and grouping of digits. Every function may be called on any thread after useSystemLanguage.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "vocabulary/language.hpp"

namespace corvana {

/// The catalogue that a text is looked up in.
enum class TextTable {
  corvana,  ///< "Corvana": everything but the update window
  vantor,   ///< "Vantor": the update window
};

/// Takes language and number format from the environment and finds the catalogues: beside the
/// program in a build tree, in ../share/locale of an installation. To be called once, at the
/// start of main, before other threads exist.
void useSystemLanguage(const std::filesystem::path& programFolder);

/// The folder of the running program.
std::filesystem::path runningProgramFolder();

/// The user's language for `key`, or `key` itself (English) where no catalogue has it.
std::string localised(const char* key, TextTable table = TextTable::corvana);

/// A text that depends on a number: picks the plural form for `count` and puts `count`, with
/// digits grouped as the user's locale does, in place of "%ld". English uses `singular` for
/// exactly 1, `plural` otherwise.
std::string localisedCount(const char* singular, const char* plural, std::int64_t count);

/// The same for the texts of the engine's records.
const Language& systemLanguage();

}  // namespace corvana
