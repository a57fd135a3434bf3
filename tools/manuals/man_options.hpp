// Options in a manual page.
#pragma once

#include <string>

#include "described.hpp"

/// As roff with the macros of man(7): one tagged paragraph for each option; groups with a name of
/// their own first, each under its subheading.
std::string manOptions(const Command& command);
