#include "batch/batch_inputs.hpp"

#include <algorithm>
#include <string_view>

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

std::optional<NameClash> findNameClash(const std::vector<AudioFile>& files, bool useSubfolder) {
  std::unordered_map<std::string, std::string_view> inputs;
  for (const AudioFile& file : files)
    inputs.emplace(foldedName(file.path), file.name());
  for (const AudioFile& file : files) {
    const std::string_view name = file.name();
    const bool isAIFF = foldedName(name.substr(name.rfind('.'))).starts_with(".a");
    std::string output(file.path, 0, file.path.size() - name.size());
    if (useSubfolder) output += outputSubfolder(isAIFF, useSubfolder) + '/';
    output += outputName(name, isAIFF);
    if (const auto other = inputs.find(foldedName(output)); other != inputs.end())
      return NameClash{std::string(name), std::string(other->second)};
  }
  return std::nullopt;
}

}  // namespace corvana
