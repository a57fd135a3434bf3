// Why a file could not be converted, as a record.
#pragma once

#include <exception>
#include <string>
#include <vector>

#include "vocabulary/language.hpp"
#include "vocabulary/warnings.hpp"

namespace corvana {

/// A failure without its exception.
struct Failure {
  /// An errorCode, "stopped", "input-clash", "not-as-promised" or "system-error". They never
  /// change.
  std::string code;
  /// Those of a ConversionError; of an "input-clash" the name of the other input.
  std::vector<MessageValue> values = {};
  std::string text = {};  ///< what a person reads
  int errorNumber = 0;    ///< the system's, where it had a part in it
};

/// Of a ConversionError, a std::system_error or any other exception.
Failure failureOf(const std::exception& error, const Language& language);

}  // namespace corvana
