// What the commands write with --json.
#pragma once

#include <exception>
#include <string>

#include "batch/log_entry.hpp"
#include "json/records.hpp"

namespace corvana {

/// {"code", "values", "text"}; and "errorName" ("ENOSPC"), "errorNumber" where the system had a
/// part in it.
Json errorObject(const Failure& failure);
Json errorObject(const std::exception& error, const Language& language);

/// The object for a file of a conversion, whose figures are those of the output. The entry is not
/// that of a batch without files.
Json jsonOf(const LogEntry& entry, const Language& language);

/// One line for standard output, with its line feed. ASCII on a terminal, so that no name drives
/// it. Never fails.
std::string lineOf(const Json& object);

}  // namespace corvana
