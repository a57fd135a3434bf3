#include "batch/detect_format.hpp"

#include "platform/texts.hpp"
#include "vocabulary/chunks.hpp"
#include "vocabulary/errors.hpp"

namespace corvana {

bool detectFormat(ByteView file) {
  if (file.size() < fileHeaderSize)
    throw ConversionError::unsupported(localised("file is too short"));
  const std::string_view id = Fields(file, ByteOrder::big).id(0);
  if (id == "RIFF") return false;
  if (id == "FORM") return true;
  throw ConversionError::unsupported(localised("neither WAV nor AIFF"));
}

}  // namespace corvana
