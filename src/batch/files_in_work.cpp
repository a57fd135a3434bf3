#include "batch/files_in_work.hpp"

#include <algorithm>
#include <utility>

namespace corvana {
namespace {

constexpr std::size_t maxItems = 1024;

}  // namespace

void FilesInWork::begin() {
  std::unique_lock lock(mutex_);
  finished_.wait(lock, [this] { return items_.size() < maxItems; });
  items_.emplace_hint(items_.end(), begun_++, Item());
}

void FilesInWork::setOutput(std::uint64_t file, const OutputFile& output) {
  Output written{output.folder().identity(), output.identity(), foldedName(output.target().name)};
  const std::lock_guard lock(mutex_);
  items_.at(file).output = std::move(written);
}

template <typename Is>
bool FilesInWork::anyOutput(const Is& is) const {
  const std::lock_guard lock(mutex_);
  return std::any_of(items_.begin(), items_.end(), [&](const auto& item) {
    return item.second.output && is(*item.second.output);
  });
}

bool FilesInWork::isWritten(const Folder& folder, const std::string& name) const {
  return anyOutput([&, folded = foldedName(name)](const Output& output) {
    return output.foldedName == folded && output.folder == folder.identity();
  });
}

bool FilesInWork::isWritten(const FileIdentity& file) const {
  return anyOutput([&](const Output& output) {
    return output.file == InodeIdentity{file.device, file.inode};
  });
}

bool FilesInWork::isFirst(std::uint64_t file) const {
  const std::lock_guard lock(mutex_);
  return items_.begin()->first == file;
}

void FilesInWork::waitForEarlier(std::uint64_t file) {
  std::unique_lock lock(mutex_);
  finished_.wait(lock, [&] { return items_.begin()->first == file; });
}

void FilesInWork::finish(std::uint64_t file, Task task) {
  {
    std::unique_lock lock(mutex_);
    Item& item = items_.at(file);
    item.output.reset();
    item.task = std::move(task);
    // Others that finish in the meantime leave theirs to this thread.
    if (std::exchange(isHandingOn_, true)) return;
    while (!items_.empty() && items_.begin()->second.task) {
      const Task next = std::move(items_.begin()->second.task);
      items_.erase(items_.begin());
      lock.unlock();
      next();
      lock.lock();
    }
    isHandingOn_ = false;
  }
  finished_.notify_all();
}

}  // namespace corvana
