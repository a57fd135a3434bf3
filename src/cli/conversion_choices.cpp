#include "cli/conversion_choices.hpp"

#include <vector>

#include "cli/command_line.hpp"

namespace corvana {

void addEncodingOption(CLI::App& app, ConversionChoices& choices) {
  app.add_flag(
      "--any-encoding", choices.options.anyEncoding,
      "Floating point, µ-law and A-law as they are, into AIFF-C or WAV; reads RIFX as well");
}

CLI::Option* addContentOptions(CLI::App& app, ConversionChoices& choices) {
  ConversionOptions& options = choices.options;
  const auto addLoopChoice = [&](const char* name, LoopChoice choice, const char* help) {
    return app
        .add_flag_callback(
            name, [&options, choice] { options.loops = choice; }, help)
        ->option_text(" ");
  };
  addLoopChoice("--no-loops", LoopChoice::none, "No loops, for devices that refuse them")
      ->excludes(addLoopChoice("--first-loop-only", LoopChoice::first,
                               "One loop at most, the first that can be used"));
  app.add_flag("--reversible", options.reversible,
               "Store what it takes to convert back to the last byte; and convert back so");

  enum class Kept { names, texts };
  const Words<Kept> kinds = {{"names", Kept::names}, {"texts", Kept::texts}};
  app.add_option_function<std::vector<Kept>>(
         "--keep",
         [&options](const std::vector<Kept>& chosen) {
           for (const Kept kind : chosen)
             (kind == Kept::names ? options.keepNames : options.keepTexts) = true;
         },
         "Keep the names of markers and loops, or the texts of the file, or both")
      ->transform(oneOf(kinds))
      ->delimiter(',')
      ->allow_extra_args(false)
      ->type_name(wordList(kinds, "|"));
  return app.add_flag("--root-from-name", choices.rootFromName,
                      "Give files without a key the one in their name, with a warning");
}

CLI::Option* addMiddleC(CLI::App& app, int& middleC, const std::string& help) {
  return addChoice<int>(app, "--middle-c", middleC, {{"C3", 3}, {"C4", 4}, {"C5", 5}}, help);
}

}  // namespace corvana
