#include "batch/batch_inputs.hpp"

#include <algorithm>
#include <unordered_set>

#include "batch/output_url.hpp"

namespace corvana {

BatchInputs::BatchInputs(const std::vector<AudioFile>& files) {
  filesOfName_.reserve(files.size());
  for (const AudioFile& file : files)
    filesOfName_.emplace(foldedName(file.name()), &file);
}

bool BatchInputs::contains(const Folder& folder, const std::string& name) const {
  const auto [first, last] = filesOfName_.equal_range(foldedName(name));
  return std::any_of(first, last, [&](const auto& entry) {
    const auto identity = identityOf(entry.second->path);
    return identity && folder.mayLeadTo(name, *identity);
  });
}

bool wantEachOthersNames(const std::vector<AudioFile>& files, bool useSubfolder) {
  std::unordered_set<std::string> inputs;
  for (const AudioFile& file : files)
    inputs.insert(foldedName(file.path));
  return std::any_of(files.begin(), files.end(), [&](const AudioFile& file) {
    const std::filesystem::path path(file.path);
    const bool isAIFF = foldedName(path.extension().native()).starts_with(".a");
    return inputs.contains(foldedName((path.parent_path() / outputSubfolder(isAIFF, useSubfolder) /
                                       outputName(path.filename().native(), isAIFF))
                                          .native()));
  });
}

}  // namespace corvana
