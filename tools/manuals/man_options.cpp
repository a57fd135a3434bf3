#include "man_options.hpp"

#include <algorithm>
#include <regex>

namespace {

std::string replaced(const std::string& text, const char* pattern, const char* by) {
  return std::regex_replace(text, std::regex(pattern), by);
}

/// Running text, whatever it holds.
std::string plain(const std::string& text) {
  return replaced(replaced(text, R"(\\)", R"(\e)"), "^(['.])", R"(\&$1)");
}

/// Without regard to what looks like a hyphen.
std::string bold(const std::string& name) {
  return R"(\fB)" + replaced(name, "-", R"(\-)") + R"(\fR)";
}

/// Options of this and other programs in bold, the option's value in italics.
std::string sentence(const Option& option) {
  std::string text = plain(option.text);
  static const std::regex name("(^|[ (\"])(--?[a-z0-9][-a-z0-9]*)");
  for (std::smatch found; std::regex_search(text, found, name);)
    text = found.prefix().str() + found[1].str() + bold(found[2]) + found.suffix().str();
  if (!option.value.empty() && option.choices.empty())
    text = replaced(text, ("\\b" + option.value + "\\b").c_str(), R"(\fI$&\fR)");
  return text + ".\n";
}

std::string tag(const Option& option) {
  std::string result = joined(option.names, ", ", bold);
  if (!option.choices.empty())
    result += " " + joined(option.choices, "|", bold);
  else if (!option.value.empty())
    result += R"( \fI)" + option.value + R"(\fR)";
  return result;
}

std::string paragraph(const Option& option) {
  std::string result = ".TP\n" + tag(option) + "\n" + sentence(option);
  if (option.isRequired) result += "Required.\n";
  if (!option.standard.empty()) result += "Without it: " + bold(option.standard) + ".\n";
  if (!option.excludes.empty()) result += "Not with " + joined(option.excludes, ", ", bold) + ".\n";
  if (!option.needs.empty()) result += "Only with " + joined(option.needs, ", ", bold) + ".\n";
  return result;
}

}  // namespace

std::string manOptions(const Command& command) {
  std::vector<std::string> groups;
  for (const Option& option : command.options)
    if (std::find(groups.begin(), groups.end(), option.group) == groups.end())
      groups.push_back(option.group);
  const auto named = std::stable_partition(
      groups.begin(), groups.end(), [](const std::string& name) { return name != standardGroup; });
  const bool hasHeadings = named != groups.begin();

  std::string result;
  for (const std::string& group : groups) {
    if (hasHeadings) result += ".SS " + (group == standardGroup ? "Help" : group) + "\n";
    for (const Option& option : command.options)
      if (option.group == group) result += paragraph(option);
  }
  result.pop_back();
  return result;
}
