#include "described.hpp"

#include <algorithm>
#include <set>

namespace {

std::vector<std::string> namesOf(const std::set<CLI::Option*>& options) {
  std::vector<std::string> names;
  names.reserve(options.size());
  for (const CLI::Option* option : options)
    names.push_back(option->get_name());
  std::sort(names.begin(), names.end());
  return names;
}

Option describe(const CLI::App& app, const CLI::Option& option) {
  Option result;
  for (const std::string& name : option.get_snames())
    result.names.push_back("-" + name);
  for (const std::string& name : option.get_lnames())
    result.names.push_back("--" + name);
  result.text = option.get_description();
  if (option.get_items_expected_max() > 0) result.value = option.get_type_name();
  if (result.value.find('|') != std::string::npos)
    result.choices = CLI::detail::split(result.value, '|');
  result.standard = option.get_default_str();
  result.group = option.get_group();
  result.excludes = namesOf(option.get_excludes());
  result.needs = namesOf(option.get_needs());
  result.isRequired = option.get_required();
  result.endsProgram = &option == app.get_help_ptr() || &option == app.get_version_ptr();
  return result;
}

}  // namespace

Command describe(const CLI::App& app, const std::string& name, const std::string& verb,
                 const std::string& summary) {
  Command command{.name = name, .verb = verb, .summary = summary};
  for (const CLI::Option* option : app.get_options()) {
    if (option->get_positional())
      command.arguments.push_back(
          {option->get_name(), option->get_description(), option->get_items_expected_max() > 1});
    else
      command.options.push_back(describe(app, *option));
  }
  return command;
}
