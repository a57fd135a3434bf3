// Feeds the version file's reader: an even first byte takes the rest for a scrambled file as a
// server may send it, an odd one for a plain file, which it scrambles first. Run with
// -close_fd_mask=1, since refused text writes a line to standard output.

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

#include "update/result_texts.hpp"
#include "update/simple_encrypt_text.hpp"
#include "update/version_file.hpp"
#include "vocabulary/unicode.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  std::u16string text = corvana::utf16FromUtf8(bytes);
  const bool isPlain = data[0] % 2 != 0;
  if (isPlain) {
    const auto unsafe = corvana::firstUnsafeCharacter(text);
    assert(!unsafe || *unsafe < text.size());
    const std::u16string plain = std::exchange(text, corvana::simpleEncryptText(text, true));
    assert(unsafe || corvana::simpleEncryptText(text, false) == plain);
  }

  const corvana::VantorErgebnis ergebnis = corvana::parseVersionFile(text, u"Corvana", u"1.1");
  assert(ergebnis.neueVersionVorhanden == !ergebnis.newAppVersion.empty());
  assert(ergebnis.neueVersionVorhanden == !ergebnis.newReleaseNotes.empty());
  assert(ergebnis.neueVersionVorhanden || ergebnis.newDownloadURL.empty());
  assert(ergebnis.warDasEineGueltigeDatei || ergebnis == corvana::VantorErgebnis());
  assert(!corvana::resultTexts(ergebnis, 200, u"Corvana", u"1.1").text.empty());
  return 0;
}
