// What corvana-cli says beside the log.
#pragma once

#include <string>

namespace corvana {

/// A line on standard error, with the program's name; no file name in it drives the terminal.
void report(const std::string& text);

}  // namespace corvana
