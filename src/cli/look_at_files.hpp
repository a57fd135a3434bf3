// What the commands share that look at files and change nothing.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>
#include <vector>

#include "batch/audio_files.hpp"
#include "vocabulary/bytes.hpp"

namespace corvana {

struct LookOptions {
  std::vector<std::string> paths;
  bool json = false;
};

void addLookOptions(CLI::App& app, LookOptions& options);

/// What standard output gets for a file.
struct Look {
  std::string output;
  bool failed = false;  ///< makes the exit status 1
};

/// Searches the paths as a conversion does and has `look` look at the content of every file in
/// turn. A file that cannot be read is named on standard error, or in a JSON object, and does not
/// stop the others. Gives the exit status.
int lookAtFiles(const LookOptions& options,
                const std::function<Look(const std::string& path, ByteView content)>& look);

}  // namespace corvana
