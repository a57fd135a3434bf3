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

/// What the words of an option stand for.
template <typename Value>
using Words = std::map<std::string, Value>;

/// The words as help, manual and completions show them.
template <typename Value>
std::string wordList(const Words<Value>& words, const std::string& separator) {
  std::string list;
  for (const auto& word : words)
    list += (list.empty() ? "" : separator) + word.first;
  return list;
}

/// Takes `words` in any case of letters and nothing else, for each value of an option.
template <typename Value>
CLI::Validator oneOf(const Words<Value>& words) {
  const auto replace = [words](std::string& given) -> std::string {
    for (const auto& [word, value] : words) {
      if (CLI::detail::to_lower(word) != CLI::detail::to_lower(given)) continue;
      given = std::to_string(static_cast<int>(value));
      return {};
    }
    return "'" + given + "' is none of " + wordList(words, ", ");
  };
  return {replace, ""};
}

/// An option that takes one of these words.
template <typename Value>
CLI::Option* addChoice(CLI::App& app, const std::string& name, Value& value,
                       const Words<Value>& words, const std::string& description) {
  return app.add_option(name, value, description)
      ->transform(oneOf(words))
      ->type_name(wordList(words, "|"));
}

/// Parses the arguments behind the program's name. Where the program is to end now, prints help or
/// version on standard output or the mistake on standard error, and gives the exit status: 0, 1
/// where standard output takes nothing, 2 for wrong usage.
std::optional<int> parseCommandLine(CLI::App& app, const std::vector<std::string>& arguments);

}  // namespace corvana
