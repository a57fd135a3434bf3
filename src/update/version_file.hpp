// The version file: one record for each of the maker's applications, scrambled, on the maker's
// web server. Unscrambled it reads
//
//     $APP$:Corvana
//     $VERMAC$ 1.1 $INFOMAC$ First line.#+#Second line.
//     $URLMAC$ https://… $URLINFO$ https://… $
//
// A value ends at the next "$" of its record, so the last one needs a "$" of its own. One
// character between key and value is skipped.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corvana {

/// What a version file says to the user of one installed version.
struct VantorErgebnis {
  bool neueVersionVorhanden = false;     ///< a record names a newer version
  bool warDasEineGueltigeDatei = false;  ///< the file has a record for the application
  std::u16string newAppVersion;          ///< the newest version
  std::u16string newReleaseNotes;        ///< notes of all newer versions, in file order
  std::u16string newDownloadURL;         ///< where the newest version can be had
  std::u16string newWebsiteForProgram;   ///< the product's website

  bool operator==(const VantorErgebnis&) const = default;
};

/// Reads a scrambled version file; no `text` means that none was received. Whatever cannot be
/// read gives the empty record. Any thread.
VantorErgebnis parseVersionFile(const std::optional<std::u16string>& text,
                                std::u16string_view applicationName,
                                std::u16string_view installedVersion);

/// The value of the first `key` in a record, as one line; "#+#" in it stands for a line break.
/// Empty when the key is missing or no "$" closes the value.
std::u16string valueForKey(std::u16string_view key, std::u16string_view record);

}  // namespace corvana
