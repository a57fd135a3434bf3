#include "batch/run_outputs.hpp"

#include <cerrno>

#include "vocabulary/errors.hpp"

namespace corvana {

namespace fs = std::filesystem;

bool RunOutputs::contain(const OutputPlace& place, const std::string& name) const {
  const std::lock_guard lock(mutex_);
  return find(nameIn(place.folder, place.missingFolders / name)) != nullptr;
}

void RunOutputs::add(const OutputPlace& place, const std::string& name) {
  const std::lock_guard lock(mutex_);
  items_[nameIn(place.folder, place.missingFolders / name)] = {};
}

void RunOutputs::rehearse(const OutputTarget& target, const ConversionPlan& plan) {
  const std::lock_guard lock(mutex_);
  const Name name = nameIn(target.folder, target.missingFolders / target.name);
  rehearseFolders(target);
  Item item;
  bool replaces = false;
  if (const Item* const older = find(name)) {
    if (older->isFolder) failReplacing(EISDIR, target.url());
    replaces = older->content.has_value();
  } else if (target.missingFolders.empty()) {
    checkOutput(target);
    replaces = target.folder.nameExists(target.name);
  } else if (const int obstacle = target.folder.obstacleToMaking(target.name); obstacle != 0) {
    // Such as a name that is too long.
    throw ConversionError::writeFailed(target.url().native(), obstacle);
  }
  if (replaces) {
    item.content = Content{plan.header, plan.trailer, plan.samples.outputSize(), target.times};
    hasReplaced_ = true;
  }
  items_[name] = std::move(item);
}

void RunOutputs::rehearseFolders(const OutputTarget& target) {
  fs::path path;
  for (const fs::path& part : target.missingFolders) {
    const bool isOutermost = path.empty();
    path /= part;
    const Name name = nameIn(target.folder, path);
    const Item* const made = find(name);
    if (made && !made->isFolder) failCreating(ENOTDIR, target.folder.path() / path);
    if (!made && isOutermost) target.folder.rehearseMaking(part.native());
    items_[name].isFolder = true;
  }
}

std::optional<FileDescriptor> RunOutputs::openReplaced(const Folder& folder,
                                                       const std::string& name,
                                                       const fs::path& path) const {
  const std::lock_guard lock(mutex_);
  if (!hasReplaced_) return std::nullopt;
  const Item* const item = find(nameIn(folder, name));
  if (!item || !item->content) return std::nullopt;
  const Content& content = *item->content;
  FileDescriptor file = makeMemoryFile(content.header, content.sampleBytes, content.trailer, path);
  if (content.times) setTimes(file, *content.times);
  return file;
}

RunOutputs::Name RunOutputs::nameIn(const Folder& folder, const fs::path& path) {
  const InodeIdentity identity = folder.identity();
  return {identity.device, identity.inode, path.native()};
}

const RunOutputs::Item* RunOutputs::find(const Name& name) const {
  const auto found = items_.find(name);
  return found == items_.end() ? nullptr : &found->second;
}

}  // namespace corvana
