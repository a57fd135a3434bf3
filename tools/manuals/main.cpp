// make_manuals: fills in what manual pages and completions take from the programs themselves.
//   make_manuals TEMPLATE OUTPUT
// In the template, @NAME@ stands for one of the texts below.

#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <stdexcept>
#include <string>

#include "cli/convert_command.hpp"
#include "cli/verbs.hpp"
#include "completions.hpp"
#include "described.hpp"
#include "man_options.hpp"
#include "platform/bundle_info.hpp"
#include "versionfile_line.hpp"
#include "vocabulary/file_names.hpp"

namespace {

using Texts = std::map<std::string, std::string>;

std::vector<Command> corvanaCliCommands() {
  const corvana::ConvertLine line;
  std::vector<Command> commands = {describe(line.app, line.app.get_name())};
  for (const corvana::Verb& verb : corvana::verbs()) {
    const auto app = verb.commandLine();
    commands.push_back(describe(*app, app->get_name(), verb.name, verb.summary));
  }
  return commands;
}

Texts textsOfPrograms() {
  const std::vector<Command> commands = corvanaCliCommands();
  const auto text = [](std::string_view value) { return std::string(value); };
  Texts texts = {
      {"version", corvana::bundleValue(corvana::mainBundleInfo(), corvana::bundleVersionKey)},
      {"date", CORVANA_RELEASE_DATE},
      {"extensions", joined(corvana::audioExtensions, "|", text)},
      {"verbs",
       joined(corvana::verbs(), " ", [](const auto& verb) { return std::string(verb.name); })},
      {"bash options", bashOptions(commands)},
      {"bash values", bashValues(commands)},
      {"zsh verbs", zshVerbs(commands)},
      {"zsh arguments", zshArguments(commands)},
      {"fish completions", fishCompletions(commands)},
  };
  for (const Command& command : commands)
    texts["options of " + command.name] = manOptions(command);
  const VersionFileLine line;
  texts["options of corvana-versionfile"] = manOptions(describe(line.app, "corvana-versionfile"));
  for (const CLI::App* command : line.app.get_subcommands({}))
    texts["options of corvana-versionfile " + command->get_name()] =
        manOptions(describe(*command, command->get_name()));
  return texts;
}

std::string filledIn(const std::string& text, const Texts& texts) {
  static const std::regex placeholder("@([a-z][a-z -]*)@");
  std::string result;
  auto copied = text.cbegin();
  for (std::sregex_iterator found(text.begin(), text.end(), placeholder), end; found != end;
       ++found) {
    const auto known = texts.find((*found)[1]);
    if (known == texts.end()) throw std::runtime_error("nothing stands for " + found->str());
    result.append(copied, (*found)[0].first).append(known->second);
    copied = (*found)[0].second;
  }
  return result.append(copied, text.cend());
}

void make(const char* from, const char* to) {
  std::ifstream input(from, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>()};
  if (!input) throw std::runtime_error("cannot be read");
  std::ofstream output(to, std::ios::binary);
  output << filledIn(text, textsOfPrograms());
  output.close();
  if (!output) throw std::runtime_error(std::string(to) + " cannot be written");
}

}  // namespace

int main(int argumentCount, char** argumentValues) {
  if (argumentCount != 3) {
    std::fputs("usage: make_manuals TEMPLATE OUTPUT\n", stderr);
    return 2;
  }
  try {
    make(argumentValues[1], argumentValues[2]);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", argumentValues[1], error.what());
    return 1;
  }
}
