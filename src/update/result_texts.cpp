#include "update/result_texts.hpp"

#include "platform/texts.hpp"
#include "vocabulary/text_format.hpp"
#include "vocabulary/unicode.hpp"

namespace corvana {
namespace {

std::string vantor(const char* key) {
  return localised(key, TextTable::vantor);
}

/// For the screen: what a server sends may be as large as the file, and a toolkit lays out a long
/// word in the square of its length.
std::string shown(std::u16string_view text, std::size_t maxLength) {
  if (text.size() <= maxLength) return utf8FromUtf16(text);
  return utf8FromUtf16(text.substr(0, maxLength)) + "…";
}

std::string addressLine(const char* key, std::u16string_view address) {
  if (address.empty()) return {};
  return fillText(vantor(key), {shownAddress(address)}) + "\n";
}

ResultTexts newVersionTexts(const VantorErgebnis& ergebnis, const std::string& applicationName,
                            const std::string& installedVersion) {
  const std::string newVersion = shown(ergebnis.newAppVersion, maxShownVersion);
  return {
      .headline = fillText(vantor("A new version of %@ is available!"), {applicationName}),
      .versionLine = fillText(vantor("%1$@ %2$@ is now available - you have %3$@. Would you like "
                                     "to download it now?"),
                              {applicationName, newVersion, installedVersion}),
      .caption = vantor("Release Notes:"),
      .text = shown(ergebnis.newReleaseNotes, maxShownNotes) + "\n\n" +
              addressLine(translatable("Product Website: %@"), ergebnis.newWebsiteForProgram) +
              addressLine(translatable("Download URL: %@"), ergebnis.newDownloadURL),
  };
}

ResultTexts withoutNewVersion(const std::string& headline, const std::string& explanation) {
  return {.headline = headline,
          .versionLine = {},
          .caption = {},
          .text = headline + "\n" + explanation};
}

}  // namespace

std::string shownAddress(std::u16string_view address) {
  return shown(address, maxShownAddress);
}

ResultState resultState(const VantorErgebnis& ergebnis, int status) {
  constexpr int statusOk = 200;
  if (ergebnis.neueVersionVorhanden) return ResultState::newVersion;
  return status == statusOk && ergebnis.warDasEineGueltigeDatei ? ResultState::upToDate
                                                                : ResultState::unavailable;
}

ResultTexts resultTexts(const VantorErgebnis& ergebnis, int status,
                        std::u16string_view applicationName, std::u16string_view installedVersion) {
  switch (resultState(ergebnis, status)) {
    case ResultState::newVersion:
      return newVersionTexts(ergebnis, utf8FromUtf16(applicationName),
                             utf8FromUtf16(installedVersion));
    case ResultState::upToDate:
      return withoutNewVersion(
          fillText(vantor("You are using the latest version %@."),
                   {utf8FromUtf16(installedVersion)}),
          vantor("Thanks for checking, but unfortunately there is no newer version yet.") + "\n" +
              vantor("If you encounter any problems with the current version, please send me an "
                     "email with some details."));
    case ResultState::unavailable:
      break;
  }
  return withoutNewVersion(
      vantor("There is currently no newer version or the service is not available."),
      vantor("You need an active internet connection for this to work."));
}

}  // namespace corvana
