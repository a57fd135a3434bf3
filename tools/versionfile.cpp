// corvana-versionfile: the maker's tool for the version file that the update check reads.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/texts.hpp"
#include "update/result_texts.hpp"
#include "update/simple_encrypt_text.hpp"
#include "update/version_file.hpp"
#include "update/version_number.hpp"
#include "vocabulary/screen_text.hpp"
#include "vocabulary/unicode.hpp"

namespace {

namespace fs = std::filesystem;

constexpr int statusFailed = 1;
constexpr int statusWrongUsage = 2;

constexpr const char* description =
    "Scrambles, unscrambles and checks the version file that the update check reads.";

constexpr const char* footer =
    "The plain file holds one record for each application and version:\n"
    "\n"
    "  $APP$:Corvana\n"
    "  $VERMAC$ 1.1\n"
    "  $INFOMAC$ Reads large files faster.#+#Names the chunk that is damaged.\n"
    "  $URLMAC$ https://www.corvana.example/resources/downloads/Corvana-1.1.tar.xz\n"
    "  $URLINFO$ https://www.corvana.example/\n"
    "  $\n"
    "\n"
    "A value ends at the next \"$\". Line breaks in it do not count; \"#+#\" writes one. "
    "\"scramble\"\n"
    "refuses what would not come back: characters beyond the printable ASCII range, and known\n"
    "names and addresses in another case (a line break inside one keeps its case).\n"
    "\n"
    "Exit status: 0 done; 1 the file cannot be used; 2 wrong usage.\n";

/// What is wrong with a file, for the person who made it.
class FileFault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct Arguments {
  fs::path file;
  std::string application = "Corvana";
  std::string installed;
};

std::u16string readText(const fs::path& path) {
  if (fs::is_directory(path)) throw FileFault(path.string() + ": is a folder");
  std::ifstream file(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (!file) throw FileFault(path.string() + ": cannot be read");
  return corvana::utf16FromUtf8(bytes);
}

void writeText(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0)
    throw FileFault("standard output: cannot be written");
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
  return "\"" + corvana::readableText(corvana::utf8FromUtf16(rest.substr(0, length))) + "\"";
}

void scramble(const Arguments& arguments) {
  const std::u16string plain = readText(arguments.file);
  if (const auto index = corvana::firstUnsafeCharacter(plain)) {
    const std::string place = placeOf(arguments.file, plain, *index);
    if (plain[*index] > corvana::maxScramblableCharacter)
      throw FileFault(place + quoted(plain, *index) + " begins with a character beyond ASCII");
    const std::u16string back =
        corvana::simpleEncryptText(corvana::simpleEncryptText(plain, true), false);
    throw FileFault(place + quoted(plain, *index) + " would come out as " + quoted(back, *index));
  }
  writeText(corvana::utf8FromUtf16(corvana::simpleEncryptText(plain, true)));
}

void unscramble(const Arguments& arguments) {
  const std::u16string scrambled = readText(arguments.file);
  const std::u16string plain = corvana::simpleEncryptText(scrambled, false);
  if (plain.empty() && !scrambled.empty())
    throw FileFault(arguments.file.string() + ": is not a scrambled text");
  writeText(corvana::utf8FromUtf16(plain));
}

/// Prints what the update window would show.
void check(const Arguments& arguments) {
  constexpr int statusOk = 200;
  const std::u16string application = corvana::utf16FromUtf8(arguments.application);
  const std::u16string installed = corvana::utf16FromUtf8(arguments.installed);
  const corvana::VantorErgebnis ergebnis =
      corvana::parseVersionFile(readText(arguments.file), application, installed);
  const corvana::ResultTexts texts =
      corvana::resultTexts(ergebnis, statusOk, application, installed);
  if (ergebnis.neueVersionVorhanden)
    writeText(corvana::readableText(texts.headline + "\n" + texts.versionLine + "\n\n" +
                                    texts.caption + "\n"));
  writeText(corvana::readableText(texts.text) + "\n");
  if (!ergebnis.warDasEineGueltigeDatei)
    throw FileFault(arguments.file.string() + ": has no record of \"" + arguments.application +
                    "\"");
}

int run(int argumentCount, char** argumentValues) {
  Arguments arguments;
  CLI::App app(description, "corvana-versionfile");
  app.footer(footer);
  app.require_subcommand(1);
  const auto command = [&](const char* name, const char* help) {
    CLI::App* subcommand = app.add_subcommand(name, help);
    subcommand->add_option("FILE", arguments.file)->required()->type_name("");
    return subcommand;
  };
  const CLI::App* scrambling = command("scramble", "Scramble the plain FILE onto standard output");
  const CLI::App* unscrambling = command("unscramble", "Unscramble FILE onto standard output");
  CLI::App* checking =
      command("check", "Print what a user is told who has a version installed and gets FILE");
  checking->add_option("--app", arguments.application, "Name of the application")
      ->capture_default_str()
      ->type_name("NAME");
  checking
      ->add_option("--installed", arguments.installed, "The version that the user has installed")
      ->required()
      ->type_name("VERSION")
      ->check([](const std::string& version) {
        const bool usable = corvana::versionNumber(corvana::utf16FromUtf8(version)) > 0;
        return usable ? std::string() : "not a version: " + version;
      });
  try {
    app.parse(argumentCount, argumentValues);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : statusWrongUsage;
  }
  if (scrambling->parsed()) scramble(arguments);
  if (unscrambling->parsed()) unscramble(arguments);
  if (checking->parsed()) check(arguments);
  return 0;
}

}  // namespace

int main(int argumentCount, char** argumentValues) {
  try {
    corvana::useSystemLanguage(corvana::runningProgramFolder());
    return run(argumentCount, argumentValues);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "corvana-versionfile: %s\n", error.what());
    return statusFailed;
  }
}
