// What every program of ours makes of its arguments, whatever they hold.
#pragma once

#include <CLI/CLI.hpp>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace corvana {

/// The arguments behind the program's name, fit for the parser. It takes "[a,b]" for a list; no
/// option has such a value, so what starts with a bracket, as an argument or as the value of an
/// option, is a path, and means the same with "./" in front.
std::vector<std::string> protectBrackets(int count, char** arguments);

/// An option that takes one of the values named in `values`, in any case of letters. Help, manual
/// and completions show the names.
template <typename Value>
CLI::Option* addChoice(CLI::App& app, const std::string& name, Value& value,
                       const std::map<std::string, Value>& values, const std::string& description) {
  std::string names;
  for (const auto& choice : values)
    names += (names.empty() ? "" : "|") + choice.first;
  return app.add_option(name, value, description)
      ->transform(CLI::CheckedTransformer(values, CLI::ignore_case).description(""))
      ->type_name(names);
}

/// Parses the arguments behind the program's name. Where the program is to end now, prints help or
/// version on standard output or the mistake on standard error, and gives the exit status: 0, 1
/// where standard output takes nothing, 2 for wrong usage.
std::optional<int> parseCommandLine(CLI::App& app, const std::vector<std::string>& arguments);

}  // namespace corvana
