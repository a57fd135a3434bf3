// Texts that a person reads: translation through gettext catalogues whose keys are the English
// texts, and filling of their "%@" and "%ld" places. Every function may be called on any thread
// after useSystemLanguage.
#pragma once

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <string_view>

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

/// Puts texts in place of "%@" (one after another) and "%1$@", "%2$@" … (by number). A place
/// without a text becomes empty. Texts are inserted unchanged.
std::string fillText(std::string_view format, std::initializer_list<std::string_view> texts);

/// The number in plain decimal digits, without grouping, "-" in front when negative.
std::string decimalText(std::int64_t number);

/// The shortest decimal form that reads back as the same double, with at least one decimal
/// place ("44100.5", "4000000000.0"); "inf" and "nan" for values that are not finite; an
/// exponent from 1e+16 upwards and below 0.0001.
std::string decimalText(double number);

/// `text` made fit for a screen: bytes that are not UTF-8 and control characters other than the
/// line feed become U+FFFD, so that no file name can drive a terminal.
std::string readableText(std::string_view text);

}  // namespace corvana
