#include "convert/detect_format.hpp"

#include "vocabulary/chunks.hpp"
#include "vocabulary/errors.hpp"

namespace corvana {

bool detectFormat(ByteView file) {
  if (file.size() < fileHeaderSize) throw ConversionError::unsupported(UnsupportedKind::tooShort);
  const std::string_view id = Fields(file, ByteOrder::big).id(0);
  if (id == "RIFF") return false;
  if (id == "FORM") return true;
  throw ConversionError::unsupported(UnsupportedKind::unknownFile);
}

}  // namespace corvana
