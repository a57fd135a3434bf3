// What a file holds, as lines for people.
#pragma once

#include <string>
#include <variant>

#include "convert/conversion_plan.hpp"
#include "inspect/file_description.hpp"
#include "vocabulary/errors.hpp"
#include "vocabulary/language.hpp"

namespace corvana {

/// What a conversion would make of a file.
using Prospect = std::variant<ConversionPlan, ConversionError>;

/// `file` is its complete content.
Prospect prospectOf(ByteView file);

/// Aligned lines, each with its line feed, without the file's name. Long lists are cut. `middleC`
/// as in noteName.
std::string infoText(const FileDescription& file, const Prospect& prospect, int middleC,
                     const Language& language);

}  // namespace corvana
