// The system's errors by the names that programmers know.
#pragma once

#include <string>

namespace corvana {

/// "ENOSPC" for example; empty where the system has no such error or no name for it.
std::string errorName(int errorNumber);

}  // namespace corvana
