// Options of a conversion that the commands have in common.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "batch/batch_options.hpp"
#include "vocabulary/conversion_options.hpp"

namespace corvana {

/// What the command line says of them.
struct ConversionChoices {
  ConversionOptions options = {};  ///< its root key does not count
  bool rootFromName = false;
  int middleC = 4;  ///< octave of note 60 in names

  /// BatchOptions::rootKeysByMiddleC
  std::optional<int> rootKeysByMiddleC() const {
    return rootFromName ? std::optional(middleC) : std::nullopt;
  }
  ConversionOptions forFile(std::string_view name) const {
    return optionsForFile(options, rootKeysByMiddleC(), name);
  }
};

/// --any-encoding.
void addEncodingOption(CLI::App& app, ConversionChoices& choices);

/// What an output gets of its input, and whether it is reversible. Gives --root-from-name.
CLI::Option* addContentOptions(CLI::App& app, ConversionChoices& choices);

/// --middle-c, with this help.
CLI::Option* addMiddleC(CLI::App& app, int& middleC, const std::string& help);

}  // namespace corvana
