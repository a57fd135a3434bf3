#include "batch/batch_inputs.hpp"

#include <algorithm>
#include <string_view>

#include "vocabulary/file_names.hpp"

namespace corvana {
namespace {

bool isNamedAIFF(const AudioFile& file) {
  const char letter = file.fileName[file.fileName.rfind('.') + 1];
  return letter == 'a' || letter == 'A';
}

}  // namespace

BatchInputs::BatchInputs(const std::vector<AudioFile>& files) {
  filesOfName_.reserve(files.size());
  for (const AudioFile& file : files)
    filesOfName_.emplace(foldedName(file.name()), &file);
}

bool BatchInputs::contains(const Folder& folder, const std::string& name) const {
  const auto [first, last] = filesOfName_.equal_range(foldedName(name));
  return std::any_of(first, last, [&](const auto& entry) {
    const auto identity = identityOf(entry.second->path());
    return identity && folder.mayLeadTo(name, *identity);
  });
}

bool BatchInputs::containName(const Folder& folder, const std::string& name) const {
  const auto [first, last] = filesOfName_.equal_range(foldedName(name));
  return std::any_of(first, last, [&](const auto& entry) {
    if (entry.second->name() != name) return false;
    const auto parent = identityOf(std::filesystem::path(entry.second->folder()) / ".");
    return parent && InodeIdentity{parent->device, parent->inode} == folder.identity();
  });
}

NameClashes findNameClashes(const std::vector<AudioFile>& files, bool useSubfolder) {
  NameClashes clashes;
  // Most libraries have one kind of files, and need no closer look.
  const auto aiffs = std::count_if(files.begin(), files.end(), isNamedAIFF);
  if (aiffs == 0 || aiffs == std::ssize(files)) return clashes;
  std::unordered_map<std::string, std::string_view> inputs;
  inputs.reserve(files.size());
  for (const AudioFile& file : files)
    inputs.emplace(foldedName(file.path()), file.name());
  for (const AudioFile& file : files) {
    const std::string_view name = file.name();
    const bool isAIFF = isNamedAIFF(file);
    std::string output = *file.place;
    if (useSubfolder) output += outputSubfolder(isAIFF) + '/';
    output += outputName(name, isAIFF);
    const auto other = inputs.find(foldedName(output));
    if (other == inputs.end()) continue;
    if (clashes.count++ == 0) clashes.first = {std::string(name), std::string(other->second)};
  }
  return clashes;
}

}  // namespace corvana
