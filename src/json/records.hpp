// The engine's records as JSON, in one vocabulary for every front end.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

#include "check/findings.hpp"
#include "convert/plan_conversion.hpp"
#include "inspect/file_description.hpp"
#include "verify/differences.hpp"
#include "vocabulary/failure.hpp"
#include "vocabulary/language.hpp"
#include "vocabulary/messages.hpp"
#include "vocabulary/warnings.hpp"

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

/// {"code", "values", "text"}
Json jsonOf(const Failure& failure);

/// "wav-to-aiff" or "aiff-to-wav".
const char* directionCode(bool toWAV);

/// Adds the figures of an output: format, those of the summary, "frames", "bytes".
void addOutput(Json& object, bool isWAV, const Summary& summary, std::uint32_t frames,
               std::uint64_t bytes);

/// {"code", "severity", "offset", "frame", "loop", "values", "text"}; places only where there are
/// some.
Json jsonOf(const Finding& finding, const Language& language);

/// Adds what the file holds.
void addDescription(Json& object, const FileDescription& file, int middleC);

/// Adds what a conversion of the file would say, as "conversion".
void addProspect(Json& object, const Prospect& prospect, const Language& language);

/// Adds "differenceCount" and "differences", those that are kept: {"code", "number", "frame",
/// "channel", "chunk", "offset", "expected", "found", "text"}; without what a difference has not.
void addDifferences(Json& object, const Differences& differences, const Language& language);

/// On one line. Never fails: "\uFFFD" stands for what is not UTF-8.
std::string textOf(const Json& object, bool asASCII = false);

}  // namespace corvana
