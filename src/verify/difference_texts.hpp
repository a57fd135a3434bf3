// How differences are said, to programs and to people: the one place for both.
#pragma once

#include <string>

#include "verify/differences.hpp"
#include "vocabulary/language.hpp"

namespace corvana {

/// The short name by which programs know a difference, "loop-end" for example; that of an output
/// that cannot be read is the errorCode. They never change.
const char* differenceCode(const Difference& difference);

/// The line that a person reads.
std::string differenceText(const Difference& difference, const Language& language);

/// "3 further differences.", for those that are not kept or not shown.
std::string furtherDifferences(std::uint64_t count, const Language& language);

}  // namespace corvana
