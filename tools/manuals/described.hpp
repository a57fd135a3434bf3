// What a program can be told on its command line, as plain values.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

struct Option {
  std::vector<std::string> names;  ///< with their hyphens, short ones first
  std::string text;                ///< what it does, without a full stop
  /// What stands for its value: "DIR" for a folder, "FILE" for any file, the choices with "|"
  /// between them, or something of no kind that a shell could know. Empty: it has none.
  std::string value;
  std::vector<std::string> choices;  ///< empty: `value` is free
  std::string standard;              ///< the value that holds without it; empty: not to be told
  std::string group;
  std::vector<std::string> excludes, needs;  ///< other options, by one name of each
  bool isRequired = false;
  bool endsProgram = false;  ///< help, version
};

/// A place for a file or folder.
struct Argument {
  std::string name;
  std::string text;
  bool repeats = false;
};

struct Command {
  std::string name;  ///< as it is typed: "corvana-cli info"
  std::string verb;  ///< "info"; empty where there is none
  std::string summary;
  std::vector<Option> options = {};
  std::vector<Argument> arguments = {};
};

/// In the order of the help.
Command describe(const CLI::App& app, const std::string& name, const std::string& verb = {},
                 const std::string& summary = {});

/// The options that are in none of the groups with a name of their own.
inline constexpr const char* standardGroup = "Options";

/// What comes of each, with `between` between them.
template <typename List, typename Function>
std::string joined(const List& list, const std::string& between, const Function& text) {
  std::string result;
  for (const auto& item : list)
    result += (&item == &*std::begin(list) ? "" : between) + text(item);
  return result;
}
inline std::string joined(const std::vector<std::string>& texts, const std::string& between) {
  return joined(texts, between, [](const std::string& text) { return text; });
}
