// corvana-versionfile: the maker's tool for the version file that the update check reads.

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "cli/command_line.hpp"
#include "platform/ending.hpp"
#include "platform/standard_streams.hpp"
#include "platform/texts.hpp"
#include "update/result_texts.hpp"
#include "update/simple_encrypt_text.hpp"
#include "update/text_search.hpp"
#include "update/version_file.hpp"
#include "versionfile_line.hpp"
#include "vocabulary/screen_text.hpp"
#include "vocabulary/unicode.hpp"

namespace {

namespace fs = std::filesystem;

constexpr int statusFailed = 1;

/// What is wrong with a file, for the person who made it.
class FileFault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

std::u16string readText(const fs::path& path) {
  if (fs::is_directory(path)) throw FileFault(path.string() + ": is a folder");
  std::ifstream file(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (!file) throw FileFault(path.string() + ": cannot be read");
  return corvana::utf16FromUtf8(bytes);
}

/// Exact for programs, readable on a terminal.
void writeText(std::string_view text) {
  const std::string shown =
      corvana::isTerminal(stdout) ? corvana::readableText(text) : std::string(text);
  if (std::fwrite(shown.data(), 1, shown.size(), stdout) != shown.size() ||
      std::fflush(stdout) != 0)
    throw FileFault("standard output: cannot be written");
}

void complain(const std::string& text) {
  std::fprintf(stderr, "corvana-versionfile: %s\n", corvana::readableLine(text).c_str());
}

/// "FILE:LINE:COLUMN: " of a character.
std::string placeOf(const fs::path& path, std::u16string_view text, std::size_t index) {
  const std::u16string_view before = text.substr(0, index);
  const auto line = std::count(before.begin(), before.end(), u'\n') + 1;
  const std::size_t column = index - (before.rfind(u'\n') + 1) + 1;
  return path.string() + ":" + std::to_string(line) + ":" + std::to_string(column) + ": ";
}

/// The rest of the line at `index`, at most 24 characters, quoted.
std::string quoted(std::u16string_view text, std::size_t index) {
  const std::u16string_view rest = text.substr(index);
  const std::size_t length = std::min<std::size_t>(rest.find(u'\n'), 24);
  return '"' + corvana::readableLine(corvana::utf8FromUtf16(rest.substr(0, length))) + '"';
}

void scramble(const VersionFileLine& line) {
  const std::u16string plain = readText(line.file);
  if (const auto index = corvana::firstUnsafeCharacter(plain)) {
    const std::string place = placeOf(line.file, plain, *index);
    if (plain[*index] > corvana::maxScramblableCharacter)
      throw FileFault(place + quoted(plain, *index) + " begins with a character beyond ASCII");
    const std::u16string back =
        corvana::simpleEncryptText(corvana::simpleEncryptText(plain, true), false);
    throw FileFault(place + quoted(plain, *index) + " would come out as " + quoted(back, *index));
  }
  writeText(corvana::utf8FromUtf16(corvana::simpleEncryptText(plain, true)));
}

/// Why no program can read a scrambled text; empty where nothing is known. Editors and transfers
/// add what makes it so.
std::string damage(const fs::path& path, std::u16string_view text) {
  if (text.starts_with(u'\uFEFF'))
    return path.string() +
           ": a byte-order mark precedes the scrambled text, which makes it unusable";
  const std::size_t lineBreak = text.find_first_of(u"\r\n");
  if (lineBreak == std::u16string_view::npos) return {};
  return placeOf(path, text, lineBreak) +
         "a line break in or behind the scrambled text makes it unusable";
}

/// Versions are compared as numbers with three digits a component, so 1.2 is older than 1.1.9.
bool isComparable(std::u16string_view version) {
  std::size_t components = 1;
  std::size_t digits = 0;
  for (const char16_t character : version) {
    if (character == u'.' && digits > 0) {
      ++components;
      digits = 0;
    } else if (character < u'0' || character > u'9' || ++digits > 3) {
      return false;
    }
  }
  return components == 3 && digits > 0;
}

void warnOfVersion(const std::string& where, std::u16string_view version) {
  if (!isComparable(version))
    complain(where + ": version \"" + corvana::utf8FromUtf16(version) +
             "\" is not three numbers as in 1.2.0 and may not compare as it should");
}

/// Of the records that count for the application.
void warnOfVersions(const fs::path& path, std::u16string_view plain,
                    std::u16string_view application) {
  constexpr std::u16string_view marker = u"$APP$:";
  for (std::size_t end = 0; end != std::u16string_view::npos;) {
    end = plain.find(marker);
    const std::u16string_view record = plain.substr(0, end);
    if (corvana::beginsWith(record, application))
      warnOfVersion(path.string(), corvana::valueForKey(u"$VERMAC$", record));
    if (end != std::u16string_view::npos) plain.remove_prefix(end + marker.size());
  }
}

void unscramble(const VersionFileLine& line) {
  const std::u16string scrambled = readText(line.file);
  const std::u16string plain = corvana::simpleEncryptText(scrambled, false);
  if (plain.empty() && !scrambled.empty()) {
    const std::string reason = damage(line.file, scrambled);
    throw FileFault(reason.empty() ? line.file.string() + ": is not a scrambled text" : reason);
  }
  writeText(corvana::utf8FromUtf16(plain));
}

/// Prints what the update window would show.
void check(const VersionFileLine& line) {
  constexpr int statusOk = 200;
  const std::u16string application = corvana::utf16FromUtf8(line.application);
  const std::u16string installed = corvana::utf16FromUtf8(line.installed);
  const std::u16string scrambled = readText(line.file);
  const corvana::VantorErgebnis ergebnis =
      corvana::parseVersionFile(scrambled, application, installed);
  const corvana::ResultTexts texts =
      corvana::resultTexts(ergebnis, statusOk, application, installed);
  if (ergebnis.neueVersionVorhanden)
    writeText(corvana::readableText(texts.headline + "\n" + texts.versionLine + "\n\n" +
                                    texts.caption + "\n"));
  writeText(corvana::readableText(texts.text) + "\n");
  if (!ergebnis.warDasEineGueltigeDatei) {
    const std::string reason = damage(line.file, scrambled);
    throw FileFault(reason.empty()
                        ? line.file.string() + ": has no record of \"" + line.application + "\""
                        : reason);
  }
  warnOfVersion("--installed", installed);
  warnOfVersions(line.file, corvana::simpleEncryptText(scrambled, false), application);
}

int run(int argumentCount, char** argumentValues) {
  VersionFileLine line;
  if (const auto status = corvana::parseCommandLine(
          line.app, std::vector<std::string>(argumentValues + 1, argumentValues + argumentCount)))
    return *status;
  if (line.scramble->parsed()) scramble(line);
  if (line.unscramble->parsed()) unscramble(line);
  if (line.check->parsed()) check(line);
  return 0;
}

}  // namespace

int main(int argumentCount, char** argumentValues) {
  try {
    corvana::reserveStandardStreams();
    corvana::ignoreWriteSignals();
    corvana::useSystemLanguage(corvana::runningProgramFolder(argumentValues[0]));
    return run(argumentCount, argumentValues);
  } catch (const FileFault& fault) {
    complain(fault.what());
    return statusFailed;
  } catch (...) {
    corvana::endForException();
  }
}
