// A linter for sampler files.
#pragma once

#include <vector>

#include "check/findings.hpp"
#include "inspect/file_description.hpp"

namespace corvana {

/// What is wrong with a file; empty for a well-formed one, whatever it holds. `content` is the
/// complete file, `file` its description. Of the samples only the surroundings of loops are read.
std::vector<Finding> checkFile(ByteView content, const FileDescription& file);

/// Whether one of the findings is an error.
bool hasErrors(const std::vector<Finding>& findings);

}  // namespace corvana
