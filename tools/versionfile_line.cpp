#include "versionfile_line.hpp"

#include <string>

#include "update/version_number.hpp"
#include "vocabulary/unicode.hpp"

namespace {

constexpr const char* description =
    "Scrambles, unscrambles and checks the version file that the update check reads.";

constexpr const char* footer =
    "The plain file holds one record for each application and version:\n"
    "\n"
    "  $APP$:Corvana\n"
    "  $VERMAC$ 1.1.0\n"
    "  $INFOMAC$ Reads large files faster.#+#Names the chunk that is damaged.\n"
    "  $URLMAC$ https://www.corvana.example/resources/downloads/Corvana-1.1.0.tar.xz\n"
    "  $URLINFO$ https://www.corvana.example/\n"
    "  $\n"
    "\n"
    "A value ends at the next \"$\". Line breaks in it do not count; \"#+#\" writes one. "
    "\"scramble\"\n"
    "refuses what would not come back: characters beyond the printable ASCII range, and known\n"
    "names and addresses in another case (a line break inside one keeps its case). Versions have\n"
    "three numbers: 1.1 would not be offered to somebody who has 1.0.0.\n"
    "\n"
    "Exit status: 0 done; 1 the file cannot be used; 2 wrong usage.\n";

}  // namespace

VersionFileLine::VersionFileLine() : app(description, "corvana-versionfile") {
  app.footer(footer);
  app.require_subcommand(1);
  const auto command = [&](const char* name, const char* help) {
    CLI::App* subcommand = app.add_subcommand(name, help);
    subcommand->add_option("FILE", file)->required()->type_name("");
    return subcommand;
  };
  scramble = command("scramble", "Scramble the plain FILE onto standard output");
  unscramble = command("unscramble", "Unscramble FILE onto standard output");
  check = command("check", "Print what a user is told who has a version installed and gets FILE");
  check->add_option("--app", application, "Name of the application")
      ->capture_default_str()
      ->type_name("NAME");
  check->add_option("--installed", installed, "The version that the user has installed")
      ->required()
      ->type_name("VERSION")
      ->check([](const std::string& version) {
        const bool usable = corvana::versionNumber(corvana::utf16FromUtf8(version)) > 0;
        return usable ? std::string() : "not a version: " + version;
      });
}
