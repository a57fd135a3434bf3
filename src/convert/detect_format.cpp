#include "convert/detect_format.hpp"

#include "vocabulary/chunks.hpp"
#include "vocabulary/errors.hpp"

namespace corvana {

bool detectFormat(ByteView file, bool anyEncoding) {
  if (file.size() < fileHeaderSize) throw ConversionError::unsupported(UnsupportedKind::tooShort);
  const std::string_view id = Fields(file, ByteOrder::big).id(0);
  if (id == "RIFF" || (anyEncoding && id == "RIFX")) return false;
  if (id == "FORM") return true;
  throw ConversionError::unsupported(UnsupportedKind::unknownFile);
}

}  // namespace corvana
