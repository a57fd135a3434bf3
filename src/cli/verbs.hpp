// What corvana-cli can be asked for beside converting.
#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace corvana {

/// A first word that asks for something other than converting.
struct Verb {
  const char* name;
  const char* summary;
  /// Takes the arguments behind the name and gives the exit status.
  int (*run)(const std::vector<std::string>& arguments);
  /// Its command line, for those who describe it.
  std::shared_ptr<const CLI::App> (*commandLine)();
};

std::span<const Verb> verbs();

}  // namespace corvana
