// What a file holds, as lines for people.
#pragma once

#include <string>

#include "convert/plan_conversion.hpp"
#include "inspect/file_description.hpp"
#include "vocabulary/language.hpp"

namespace corvana {

/// Aligned lines, each with its line feed, without the file's name. Long lists are cut. `middleC`
/// as in noteName.
std::string infoText(const FileDescription& file, const Prospect& prospect, int middleC,
                     const Language& language);

}  // namespace corvana
