// corvana-cli verify: whether one file holds what another one promises.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "cli/conversion_choices.hpp"

namespace corvana {

/// The command line of "verify", and what it says once it is parsed.
struct VerifyLine {
  VerifyLine();

  CLI::App app;
  std::string input;
  std::string output;
  bool json = false;
  ConversionChoices choices;
};

/// Takes the arguments behind "verify" and gives the exit status.
int runVerify(const std::vector<std::string>& arguments);

}  // namespace corvana
