// The paths of --files-from.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace corvana {

/// Appends the paths that the file `list` holds ("-": standard input), each ended by `separator`,
/// a line feed or NUL; empty ones are skipped. Fails with a std::exception that says why, where the
/// list cannot be read or is none of this kind.
void readPathList(const std::string& list, char separator,
                  std::vector<std::filesystem::path>& paths);

}  // namespace corvana
