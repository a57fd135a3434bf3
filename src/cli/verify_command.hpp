// corvana-cli verify: whether one file holds what another one promises.
#pragma once

#include <string>
#include <vector>

namespace corvana {

/// Takes the arguments behind "verify" and gives the exit status.
int runVerify(const std::vector<std::string>& arguments);

}  // namespace corvana
