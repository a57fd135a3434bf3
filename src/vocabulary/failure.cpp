#include "vocabulary/failure.hpp"

#include <system_error>

#include "vocabulary/errors.hpp"
#include "vocabulary/messages.hpp"

namespace corvana {

Failure failureOf(const std::exception& error, const Language& language) {
  if (const auto* conversion = dynamic_cast<const ConversionError*>(&error)) {
    Failure failure{errorCode(*conversion), conversion->values(),
                    errorDescription(*conversion, language)};
    if (conversion->kind() == ConversionError::Case::writeFailed)
      failure.errorNumber = static_cast<int>(std::get<std::int64_t>(failure.values.at(1)));
    return failure;
  }
  const auto* system = dynamic_cast<const std::system_error*>(&error);
  const std::error_code code = system == nullptr ? std::error_code() : system->code();
  const bool isStopped = code == std::errc::operation_canceled;
  return {.code = isStopped ? "stopped" : "system-error",
          .text = error.what(),
          .errorNumber = isStopped ? 0 : code.value()};
}

}  // namespace corvana
