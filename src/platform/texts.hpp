// The user's language: translation through gettext catalogues whose keys are the English texts,
// and grouping of digits. Every function may be called on any thread after useSystemLanguage.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "vocabulary/language.hpp"

namespace corvana {

/// The catalogue that a text is looked up in.
enum class TextTable {
  corvana,  ///< "Corvana": everything but the update window
  vantor,   ///< "Vantor": the update window
};

/// Where the catalogues are: beside the program in a build tree, in ../share/locale of an
/// installation, else where the build was to be installed. `programFolder` may be unknown (empty).
std::filesystem::path catalogueFolder(const std::filesystem::path& programFolder);

/// Takes language and number format from the environment, texts from catalogueFolder. To be called
/// once, at the start of main, before other threads exist.
void useSystemLanguage(const std::filesystem::path& programFolder);

/// The folder of the program that was started as `command` (the first argument of main): a path, or
/// a name that is looked for in the folders of `searchPath` (PATH). Empty where it is not there.
std::filesystem::path folderOfCommand(std::string_view command, std::string_view searchPath);

/// The folder of the running program, which was started as `command` (null: unknown); empty where
/// it cannot be told.
std::filesystem::path runningProgramFolder(const char* command);

/// The user's language for `key`, or `key` itself (English) where no catalogue has it.
std::string localised(const char* key, TextTable table = TextTable::corvana);

/// The number with digits grouped as the user's locale does (not where it would do so with a
/// character that is not in UTF-8).
std::string groupedText(std::int64_t number);

/// A text that depends on a number: picks the plural form for `count` and puts groupedText(`count`)
/// in place of "%ld". English uses `singular` for exactly 1, `plural` otherwise.
std::string localisedCount(const char* singular, const char* plural, std::int64_t count);

/// The same for the texts of the engine's records.
const Language& systemLanguage();

}  // namespace corvana
