#include "platform/texts.hpp"

#include <algorithm>
#include <array>
#include <climits>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <libintl.h>
#include <system_error>
#include <unistd.h>

#include "vocabulary/screen_text.hpp"

namespace corvana {
namespace {

const char* domainOf(TextTable table) {
  return table == TextTable::vantor ? "Vantor" : "Corvana";
}

std::string environmentValue(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

/// "de_DE.UTF-8@euro" as gettext wants it in LANGUAGE: "de_DE".
std::string languageOfEnvironment() {
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const std::string value = environmentValue(name);
    if (!value.empty()) return value.substr(0, value.find_first_of(".@"));
  }
  return {};
}

/// Sets what the program uses of a locale. Each of the other categories would cost a file.
bool setCategories(const char* locale, bool withTexts) {
  return std::setlocale(LC_CTYPE, locale) != nullptr &&
         std::setlocale(LC_NUMERIC, locale) != nullptr &&
         (!withTexts || std::setlocale(LC_MESSAGES, locale) != nullptr);
}

class SystemLanguage : public Language {
 public:
  std::string localised(const char* key) const override { return corvana::localised(key); }
  std::string localisedCount(const char* singular, const char* plural,
                             std::int64_t count) const override {
    return corvana::localisedCount(singular, plural, count);
  }
};

}  // namespace

const Language& systemLanguage() {
  static const SystemLanguage language;
  return language;
}

std::filesystem::path catalogueFolder(const std::filesystem::path& programFolder) {
  // Without a program's folder these would be the current one's, and anybody's.
  if (programFolder.is_absolute()) {
    for (const auto& folder : {programFolder / "locale", programFolder / "../share/locale"}) {
      std::error_code error;
      if (std::filesystem::is_directory(folder, error)) return folder;
    }
  }
  return CORVANA_LOCALE_FOLDER;
}

void useSystemLanguage(const std::filesystem::path& programFolder) {
  const std::string language = languageOfEnvironment();
  // Without a language gettext would look in vain for the catalogues of one that is called "C".
  const bool hasLanguage = language != "C" || !environmentValue("LANGUAGE").empty();
  if (!setCategories("", hasLanguage)) {
    // The wanted locale is not generated on this system. Its texts can be had all the same:
    // gettext reads LANGUAGE in any locale but "C".
    setCategories("C.UTF-8", hasLanguage);
    if (!language.empty() && std::getenv("LANGUAGE") == nullptr)
      ::setenv("LANGUAGE", language.c_str(), 1);
  }
  const std::filesystem::path catalogues = catalogueFolder(programFolder);
  for (const TextTable table : {TextTable::corvana, TextTable::vantor}) {
    ::bindtextdomain(domainOf(table), catalogues.c_str());
    ::bind_textdomain_codeset(domainOf(table), "UTF-8");
  }
}

std::filesystem::path folderOfCommand(std::string_view command, std::string_view searchPath) {
  std::error_code error;
  if (command.find('/') != std::string_view::npos)
    return std::filesystem::canonical(command, error).parent_path();
  while (!searchPath.empty()) {
    const std::size_t length = std::min(searchPath.find(':'), searchPath.size());
    const std::filesystem::path file =
        std::filesystem::path(searchPath.substr(0, length)) / command;
    searchPath.remove_prefix(std::min(length + 1, searchPath.size()));
    if (file.is_absolute() && std::filesystem::is_regular_file(file, error) &&
        ::access(file.c_str(), X_OK) == 0)
      return std::filesystem::canonical(file, error).parent_path();
  }
  return {};
}

std::filesystem::path runningProgramFolder(const char* command) {
#if CORVANA_HAS_LINK_TO_PROGRAM
  std::array<char, PATH_MAX> program{};
  const ssize_t length = ::readlink("/proc/self/exe", program.data(), program.size());
  if (length > 0)
    return std::filesystem::path(std::string_view(program.data(), static_cast<std::size_t>(length)))
        .parent_path();
#endif
  return command == nullptr ? std::filesystem::path()
                            : folderOfCommand(command, environmentValue("PATH"));
}

std::string localised(const char* key, TextTable table) {
  return ::dgettext(domainOf(table), key);
}

std::string groupedText(std::int64_t number) {
  std::array<char, 64> text{};
  // The apostrophe is POSIX: it groups digits as LC_NUMERIC says.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat"
  const int length =
      std::snprintf(text.data(), text.size(), "%'lld", static_cast<long long>(number));
#pragma GCC diagnostic pop
  const std::string grouped(text.data(), static_cast<std::size_t>(length));
  // The separator comes in the locale's character set, the texts around it are in UTF-8.
  return readableLine(grouped) == grouped ? grouped : std::to_string(number);
}

std::string localisedCount(const char* singular, const char* plural, std::int64_t count) {
  return insertCount(::dngettext(domainOf(TextTable::corvana), singular, plural,
                                 static_cast<unsigned long>(count)),
                     groupedText(count));
}

}  // namespace corvana
