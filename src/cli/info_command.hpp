// corvana-cli info: what files hold.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "cli/conversion_choices.hpp"
#include "cli/look_at_files.hpp"

namespace corvana {

/// The command line of "info", and what it says once it is parsed.
struct InfoLine {
  InfoLine();

  CLI::App app;
  LookOptions options;
  ConversionChoices choices;  ///< its middleC for everything that is shown as well
};

/// Takes the arguments behind "info" and gives the exit status.
int runInfo(const std::vector<std::string>& arguments);

}  // namespace corvana
