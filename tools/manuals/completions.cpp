#include "completions.hpp"

#include <functional>

namespace {

/// What a shell can offer for the value of an option.
enum class Offer { nothing, choices, folders, files };

Offer offerFor(const Option& option) {
  if (!option.choices.empty()) return Offer::choices;
  if (option.value == "DIR") return Offer::folders;
  return option.value == "FILE" ? Offer::files : Offer::nothing;
}

/// `text` with `escape` before each of `characters`.
std::string escaped(const std::string& text, const std::string& characters,
                    const std::string& escape) {
  std::string result;
  for (const char character : text) {
    if (characters.find(character) != std::string::npos) result += escape;
    result += character;
  }
  return result;
}

std::string lines(const std::vector<Command>& commands,
                  const std::function<std::string(const Command&)>& text) {
  std::string result = joined(commands, "", text);
  if (!result.empty()) result.pop_back();  // the template has a line break
  return result;
}

/// For bash and zsh, which know no escape between such quotes.
std::string inQuotes(const std::string& text) {
  std::string result;
  for (const char character : text)
    result += character == '\'' ? std::string("'\\''") : std::string(1, character);
  return "'" + result + "'";
}

std::string zshText(const std::string& text) {
  return escaped(text, "\\[]:", "\\");
}

std::string zshOption(const Option& option) {
  std::string excluded = option.endsProgram ? "- *" : joined(option.names, " ");
  for (const std::string& other : option.excludes)
    excluded += " " + other;
  std::string value;
  switch (offerFor(option)) {
    case Offer::nothing:
      value = option.value.empty() ? "" : ": ";
      break;
    case Offer::choices:
      value = "(" + joined(option.choices, " ") + ")";
      break;
    case Offer::folders:
      value = "_files -/";
      break;
    case Offer::files:
      value = "_files";
      break;
  }
  std::string result;
  for (const std::string& name : option.names) {
    const bool takesEqualsSign = !option.value.empty() && name.starts_with("--");
    std::string spec = "(" + excluded;
    spec += ")" + name;
    if (takesEqualsSign) spec += "=";
    spec += "[" + zshText(option.text) + "]";
    if (!option.value.empty()) spec += ":" + zshText(option.value) + ":" + value;
    result += " \\\n        " + inQuotes(spec);
  }
  return result;
}

}  // namespace

std::string bashOptions(const std::vector<Command>& commands) {
  return lines(commands, [](const Command& command) {
    const std::string names = joined(
        command.options, " ", [](const Option& option) { return joined(option.names, " "); });
    return "    " + inQuotes(command.verb) + ") options=" + inQuotes(names) + " ;;\n";
  });
}

std::string bashValues(const std::vector<Command>& commands) {
  return lines(commands, [](const Command& command) {
    std::string result;
    for (const Option& option : command.options) {
      if (option.value.empty()) continue;
      result += "    " + joined(option.names, "|", [&](const std::string& name) {
                  return inQuotes(command.verb + ":" + name);
                });
      switch (offerFor(option)) {
        case Offer::nothing:
          result += ")";
          break;
        case Offer::choices:
          result += ") _corvana_cli_words " + inQuotes(joined(option.choices, " "));
          break;
        case Offer::folders:
          result += ") _corvana_cli_folders";
          break;
        case Offer::files:
          result += ") _corvana_cli_files";
          break;
      }
      result += " ;;\n";
    }
    return result;
  });
}

std::string zshVerbs(const std::vector<Command>& commands) {
  return lines(commands, [](const Command& command) {
    return command.verb.empty()
               ? ""
               : "    " + inQuotes(zshText(command.verb) + ":" + zshText(command.summary)) + "\n";
  });
}

std::string zshArguments(const std::vector<Command>& commands) {
  return lines(commands, [](const Command& command) {
    std::string result = "    (" + inQuotes(command.verb) + ")\n      _arguments -S";
    for (const Option& option : command.options)
      result += zshOption(option);
    for (const Argument& argument : command.arguments)
      result += " \\\n        " + inQuotes((argument.repeats ? "*:" : ":") +
                                           zshText(argument.text) + ":_corvana-cli_inputs");
    return result + "\n      ;;\n";
  });
}

std::string fishCompletions(const std::vector<Command>& commands) {
  const auto fishQuotes = [](const std::string& text) {
    return "'" + escaped(text, "\\'", "\\") + "'";
  };
  return lines(commands, [&](const Command& command) {
    std::string result;
    if (!command.verb.empty())
      result += "complete -c corvana-cli -n __corvana_cli_is_first -a " + command.verb + " -d " +
                fishQuotes(command.summary) + "\n";
    for (const Option& option : command.options) {
      result += "complete -c corvana-cli -n '__corvana_cli_does \"" + command.verb + "\"'";
      for (const std::string& name : option.names)
        result += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
      switch (offerFor(option)) {
        case Offer::nothing:
          result += option.value.empty() ? "" : " -x";
          break;
        case Offer::choices:
          result += " -x -a " + fishQuotes(joined(option.choices, " "));
          break;
        case Offer::folders:
          result += " -x -a '(__fish_complete_directories)'";
          break;
        case Offer::files:
          result += " -r -F";
          break;
      }
      result += " -d " + fishQuotes(option.text) + "\n";
    }
    return result;
  });
}
