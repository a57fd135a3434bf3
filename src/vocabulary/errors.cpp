#include "vocabulary/errors.hpp"

#include <utility>

#include "vocabulary/messages.hpp"

namespace corvana {

ConversionError ConversionError::unsupported(UnsupportedKind kind,
                                             std::vector<MessageValue> values) {
  ConversionError error(Case::unsupported);
  error.unsupportedKind_ = kind;
  error.values_ = std::move(values);
  return error;
}

ConversionError ConversionError::writeFailed(std::string path, int errorNumber) {
  ConversionError error(Case::writeFailed);
  error.values_ = {std::move(path), std::int64_t{errorNumber}};
  return error;
}

const char* ConversionError::what() const noexcept {
  return errorCode(*this);
}

}  // namespace corvana
