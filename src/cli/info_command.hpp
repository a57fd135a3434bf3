// corvana-cli info: what files hold.
#pragma once

#include <string>
#include <vector>

namespace corvana {

/// Takes the arguments behind "info" and gives the exit status.
int runInfo(const std::vector<std::string>& arguments);

}  // namespace corvana
