// corvana-cli check: a linter for sampler files.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "cli/look_at_files.hpp"

namespace corvana {

/// The command line of "check", and what it says once it is parsed.
struct CheckLine {
  CheckLine();

  CLI::App app;
  LookOptions options;
};

/// Takes the arguments behind "check" and gives the exit status.
int runCheck(const std::vector<std::string>& arguments);

}  // namespace corvana
