// The parts of the shells' completions that speak of options and verbs. A verb that is empty is the
// conversion; every argument is taken for an audio file or a folder with such files.
#pragma once

#include <string>
#include <vector>

#include "described.hpp"

/// Patterns of a `case` for the verb, each of which sets `options`.
std::string bashOptions(const std::vector<Command>& commands);

/// Patterns of a `case` for VERB:OPTION, each of which completes the option's value.
std::string bashValues(const std::vector<Command>& commands);

/// VERB:SUMMARY in quotes.
std::string zshVerbs(const std::vector<Command>& commands);

/// Patterns of a `case` for the verb, each of which calls _arguments.
std::string zshArguments(const std::vector<Command>& commands);

/// A `complete` for each option and verb.
std::string fishCompletions(const std::vector<Command>& commands);
