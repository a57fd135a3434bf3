// corvana-cli check: a linter for sampler files.
#pragma once

#include <string>
#include <vector>

namespace corvana {

/// Takes the arguments behind "check" and gives the exit status.
int runCheck(const std::vector<std::string>& arguments);

}  // namespace corvana
