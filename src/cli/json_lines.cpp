#include "cli/json_lines.hpp"

#include <cmath>

#include "platform/error_names.hpp"
#include "platform/standard_streams.hpp"

namespace corvana {

Json errorObject(const Failure& failure) {
  Json object = jsonOf(failure);
  if (failure.errorNumber != 0) {
    object["errorName"] = errorName(failure.errorNumber);
    object["errorNumber"] = failure.errorNumber;
  }
  return object;
}

Json errorObject(const std::exception& error, const Language& language) {
  return errorObject(failureOf(error, language));
}

Json jsonOf(const LogEntry& entry, const Language& language) {
  Json object = fileObject(entry.input);
  if (!entry.output.empty()) addPath(object, "output", entry.output);
  const bool toWAV = entry.direction == Direction::toWAV;
  if (entry.direction) object["direction"] = directionCode(toWAV);
  if (entry.outcome == Outcome::converted)
    addOutput(object, toWAV, entry.summary, entry.frames, entry.bytes);
  if (entry.outcome == Outcome::skipped) object["skipped"] = true;
  object["warnings"] = jsonOf(entry.warnings, language);
  if (entry.outcome == Outcome::converted) object["leftOut"] = entry.leftOut;
  if (entry.outcome == Outcome::failed) object["error"] = errorObject(entry.failure);
  object["seconds"] = std::round(entry.seconds * 1e6) / 1e6;
  return object;
}

std::string lineOf(const Json& object) {
  static const bool onTerminal = isTerminal(stdout);
  return textOf(object, onTerminal) + "\n";
}

}  // namespace corvana
