#include "platform/texts.hpp"

#include <array>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <libintl.h>
#include <system_error>

#include "platform/unicode.hpp"

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

std::string groupedText(std::int64_t number) {
  std::array<char, 64> text{};
  // The apostrophe is POSIX: it groups digits as LC_NUMERIC says.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat"
  const int length =
      std::snprintf(text.data(), text.size(), "%'lld", static_cast<long long>(number));
#pragma GCC diagnostic pop
  return {text.data(), static_cast<std::size_t>(length)};
}

}  // namespace

void useSystemLanguage(const std::filesystem::path& programFolder) {
  if (std::setlocale(LC_ALL, "") == nullptr) {
    // The wanted locale is not generated on this system. Its texts can be had all the same:
    // gettext reads LANGUAGE in any locale but "C".
    const std::string language = languageOfEnvironment();
    std::setlocale(LC_ALL, "C.UTF-8");
    if (!language.empty() && std::getenv("LANGUAGE") == nullptr)
      ::setenv("LANGUAGE", language.c_str(), 1);
  }
  std::error_code error;
  std::filesystem::path catalogues = programFolder / "locale";
  if (!std::filesystem::is_directory(catalogues, error))
    catalogues = programFolder / ".." / "share" / "locale";
  for (const TextTable table : {TextTable::corvana, TextTable::vantor}) {
    ::bindtextdomain(domainOf(table), catalogues.c_str());
    ::bind_textdomain_codeset(domainOf(table), "UTF-8");
  }
}

std::filesystem::path runningProgramFolder() {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

std::string localised(const char* key, TextTable table) {
  return ::dgettext(domainOf(table), key);
}

std::string localisedCount(const char* singular, const char* plural, std::int64_t count) {
  std::string text = ::dngettext(domainOf(TextTable::corvana), singular, plural,
                                 static_cast<unsigned long>(count));
  const std::size_t place = text.find("%ld");
  if (place != std::string::npos) text.replace(place, 3, groupedText(count));
  return text;
}

std::string fillText(std::string_view format, std::initializer_list<std::string_view> texts) {
  std::string filled;
  std::size_t next = 0;
  const auto append = [&](std::size_t index) {
    if (index < texts.size()) filled += texts.begin()[index];
  };
  while (!format.empty()) {
    if (format.starts_with("%@")) {
      append(next++);
      format.remove_prefix(2);
    } else if (format.size() >= 4 && format[0] == '%' && format[1] >= '1' && format[1] <= '9' &&
               format.substr(2, 2) == "$@") {
      append(static_cast<std::size_t>(format[1] - '1'));
      format.remove_prefix(4);
    } else {
      filled += format.front();
      format.remove_prefix(1);
    }
  }
  return filled;
}

std::string decimalText(std::int64_t number) {
  return std::to_string(number);
}

std::string decimalText(double number) {
  if (std::isnan(number)) return "nan";
  if (std::isinf(number)) return number < 0 ? "-inf" : "inf";
  const double magnitude = std::fabs(number);
  const bool plain = magnitude == 0 || (magnitude >= 1e-4 && magnitude < 1e16);
  std::array<char, 64> digits{};
  const auto [end, status] =
      std::to_chars(digits.data(), digits.data() + digits.size(), number,
                    plain ? std::chars_format::fixed : std::chars_format::scientific);
  std::string text(digits.data(), status == std::errc() ? end : digits.data());
  if (plain && text.find('.') == std::string::npos) text += ".0";
  return text;
}

std::string readableText(std::string_view text) {
  constexpr std::string_view replacement = "\xEF\xBF\xBD";
  std::string readable;
  while (!text.empty()) {
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t length = utf8SequenceLength(text);
    const bool control =
        (first < 0x20 && first != '\n') || first == 0x7F ||
        (first == 0xC2 && length == 2 && static_cast<unsigned char>(text[1]) < 0xA0);
    if (length == 0 || control) {
      readable += replacement;
      text.remove_prefix(length == 0 ? 1 : length);
    } else {
      readable += text.substr(0, length);
      text.remove_prefix(length);
    }
  }
  return readable;
}

}  // namespace corvana
