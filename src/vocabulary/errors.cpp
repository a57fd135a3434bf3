#include "vocabulary/errors.hpp"

#include "platform/texts.hpp"

namespace corvana {

namespace {

std::string describe(ConversionError::Case kind, const std::string& text) {
  using Case = ConversionError::Case;
  switch (kind) {
    case Case::unsupported:
      return fillText(localised("Unsupported format: %@"), {text});
    case Case::writeFailed:
      return fillText(localised("Writing failed: %@"), {text});
    case Case::notRIFF:
      return localised("Not a RIFF file.");
    case Case::notWAVE:
      return localised("The RIFF file is not a WAVE file.");
    case Case::badFormatChunk:
      return localised("The fmt chunk is damaged.");
    case Case::missingFormat:
      return localised("The fmt chunk is missing.");
    case Case::missingData:
      return localised("The data chunk is missing.");
    case Case::notAIFF:
      return localised("Not an AIFF file.");
    case Case::missingComm:
      return localised("The COMM chunk is missing or damaged.");
    case Case::missingSound:
      return localised("The SSND chunk is missing.");
    case Case::tooLarge:
      return localised("The file is too large (max. 4 GB).");
  }
  return {};
}

}  // namespace

ConversionError::ConversionError(Case kind) : ConversionError(kind, std::string()) {}

ConversionError::ConversionError(Case kind, const std::string& text)
    : kind_(kind), description_(describe(kind, text)) {}

ConversionError ConversionError::unsupported(const std::string& detail) {
  return {Case::unsupported, detail};
}

ConversionError ConversionError::writeFailed(const std::filesystem::path& output) {
  return {Case::writeFailed, output.native()};
}

}  // namespace corvana
