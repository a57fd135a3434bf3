// corvana-cli without a verb: converts files and folders.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

#include "cli/conversion_choices.hpp"
#include "cli/terminal_view.hpp"

namespace corvana {

/// The command line of a conversion, and what it says once it is parsed.
struct ConvertLine {
  ConvertLine();

  CLI::App app;
  TerminalOptions options;
  std::vector<std::string> paths;
  std::optional<std::string> list;  ///< file with further paths
  bool endWithNul = false;          ///< the paths of the list
  bool strict = false;
  ConversionChoices choices;
};

/// Takes the arguments behind the program's name and gives the exit status.
int runConvert(const std::vector<std::string>& arguments);

}  // namespace corvana
