#include "batch/output_url.hpp"

#include <cstdint>
#include <string>

namespace corvana {
namespace {

namespace fs = std::filesystem;

bool isInput(const fs::path& candidate, const fs::path& input, const FileIdentity& inputIdentity) {
  return candidate.lexically_normal() == input.lexically_normal() ||
         mayLeadTo(candidate, inputIdentity);
}

}  // namespace

fs::path makeOutputURL(const fs::path& input, const FileIdentity& inputIdentity, bool isAIFF,
                       bool useSubfolder, bool overwrite) {
  fs::path folder = input.parent_path();
  if (useSubfolder) folder /= isAIFF ? "WAV" : "AIFF";
  const std::string baseName = input.stem().native();
  const std::string extension = isAIFF ? ".wav" : ".aif";
  fs::path candidate = folder / (baseName + extension);
  for (std::uint64_t n = 1; nameExists(candidate); ++n) {
    if (overwrite && !isInput(candidate, input, inputIdentity)) break;
    candidate = folder / baseName;
    candidate += " (" + std::to_string(n) + ")" + extension;
  }
  return candidate;
}

}  // namespace corvana
