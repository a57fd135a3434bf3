// The engine's records as JSON, in one vocabulary for every command.
#pragma once

#include <exception>
#include <nlohmann/json.hpp>
#include <string>

#include "batch/batch_driver.hpp"
#include "check/findings.hpp"
#include "inspect/file_description.hpp"
#include "verify/differences.hpp"
#include "vocabulary/failure.hpp"
#include "vocabulary/language.hpp"
#include "vocabulary/messages.hpp"

namespace corvana {

/// Fields keep the order in which they were added.
using Json = nlohmann::ordered_json;

/// The object for one file: the version of the schema and the file's path as "input".
Json fileObject(const std::string& input);

/// Adds a path as `key`. Where its bytes are not UTF-8, "\uFFFD" stands for those that are not, and
/// `key` + "Bytes" holds all of them in hexadecimal digits.
void addPath(Json& object, const std::string& key, const std::string& path);

/// {"code", "values", "text"}. A value that is a loop of an AIFF instrument is "sustain" or
/// "release".
Json jsonOf(const Warning& warning, const Language& language);
Json jsonOf(const Warnings& warnings, const Language& language);

/// {"code", "values", "text"}; and "errorName" ("ENOSPC"), "errorNumber" where the system had a
/// part in it.
Json jsonOf(const Failure& failure);
Json jsonOf(const std::exception& error, const Language& language);

/// The object for a file of a conversion, whose figures are those of the output. The entry is not
/// that of a batch without files.
Json jsonOf(const LogEntry& entry, const Language& language);

/// "wav-to-aiff" or "aiff-to-wav".
const char* directionCode(Direction direction);

/// {"code", "severity", "offset", "frame", "loop", "values", "text"}; places only where there are
/// some.
Json jsonOf(const Finding& finding, const Language& language);

/// Adds what the file holds.
void addDescription(Json& object, const FileDescription& file, int middleC);

/// Adds "differenceCount" and "differences", those that are kept: {"code", "number", "frame",
/// "channel", "chunk", "offset", "expected", "found", "text"}; without what a difference has not.
void addDifferences(Json& object, const Differences& differences, const Language& language);

/// One line for standard output, with its line feed. ASCII on a terminal, so that no name drives
/// it. Never fails.
std::string lineOf(const Json& object);

}  // namespace corvana
