// The command line of corvana-versionfile, and what it says once it is parsed.
#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>
#include <string>

struct VersionFileLine {
  VersionFileLine();

  CLI::App app;
  const CLI::App* scramble = nullptr;
  const CLI::App* unscramble = nullptr;
  CLI::App* check = nullptr;
  std::filesystem::path file;
  std::string application = "Corvana";
  std::string installed;
};
