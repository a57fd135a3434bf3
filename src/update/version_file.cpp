#include "update/version_file.hpp"

#include <algorithm>
#include <cstdint>

#include "update/simple_encrypt_text.hpp"
#include "update/text_search.hpp"
#include "update/version_number.hpp"

namespace corvana {
namespace {

constexpr std::u16string_view recordMarker = u"$APP$:";
constexpr std::u16string_view versionKey = u"$VERMAC$";
constexpr std::u16string_view notesKey = u"$INFOMAC$";
constexpr std::u16string_view downloadKey = u"$URLMAC$";
constexpr std::u16string_view websiteKey = u"$URLINFO$";

/// In English like the notes of the file, among which it stands.
constexpr std::u16string_view notesWhenEmpty = u"Various minor fixes and improvements";

void appendNotes(std::u16string& notes, std::u16string_view applicationName,
                 std::u16string_view version, std::u16string_view info) {
  notes.append(applicationName).append(u" ").append(version).append(u"\n");
  notes.append(62, u'-').append(u"\n");
  notes.append(info.empty() ? notesWhenEmpty : info).append(u"\n\n");
}

/// `newestNumber` is that of the newest version so far, 0 before there is one.
void readRecord(std::u16string_view record, std::u16string_view applicationName,
                std::int64_t installedNumber, std::int64_t& newestNumber,
                VantorErgebnis& ergebnis) {
  ergebnis.warDasEineGueltigeDatei = true;
  const std::u16string version = valueForKey(versionKey, record);
  const std::int64_t number = versionNumber(version);
  const std::u16string website = valueForKey(websiteKey, record);
  if (number <= installedNumber) {
    if (ergebnis.newWebsiteForProgram.empty()) ergebnis.newWebsiteForProgram = website;
    return;
  }
  appendNotes(ergebnis.newReleaseNotes, applicationName, version, valueForKey(notesKey, record));
  if (newestNumber < number) {
    newestNumber = number;
    ergebnis.newAppVersion = version;
    ergebnis.newDownloadURL = valueForKey(downloadKey, record);
    ergebnis.newWebsiteForProgram = website;
  }
}

/// The text in front of the first marker counts as a record too.
void readRecords(std::u16string_view text, std::u16string_view applicationName,
                 std::int64_t installedNumber, VantorErgebnis& ergebnis) {
  std::int64_t newestNumber = 0;
  while (true) {
    const std::size_t end = text.find(recordMarker);
    const std::u16string_view record = text.substr(0, end);
    if (beginsWith(record, applicationName))
      readRecord(record, applicationName, installedNumber, newestNumber, ergebnis);
    if (end == std::u16string_view::npos) return;
    text.remove_prefix(end + recordMarker.size());
  }
}

}  // namespace

VantorErgebnis parseVersionFile(const std::optional<std::u16string>& text,
                                std::u16string_view applicationName,
                                std::u16string_view installedVersion) {
  VantorErgebnis ergebnis;
  const std::int64_t installedNumber = versionNumber(installedVersion);
  if (!text || trimmed(applicationName).empty() || installedNumber <= 0) return ergebnis;
  const std::u16string decoded = simpleEncryptText(*text, false);
  if (findPosition(decoded, recordMarker, 1) > 0)
    readRecords(decoded, applicationName, installedNumber, ergebnis);
  ergebnis.neueVersionVorhanden = !ergebnis.newAppVersion.empty();
  return ergebnis;
}

std::u16string valueForKey(std::u16string_view key, std::u16string_view record) {
  const std::int64_t position = findPosition(record, key, 1);
  if (position == 0) return {};
  const std::int64_t start = position + static_cast<std::int64_t>(key.size());
  const std::int64_t end = findPosition(record, u"$", start);
  if (end <= start) return {};
  std::u16string value(
      record.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start - 1)));
  std::erase(value, u'\r');
  std::erase(value, u'\n');
  return std::u16string(trimmed(replaceAll(value, u"#+#", u"\n")));
}

}  // namespace corvana
