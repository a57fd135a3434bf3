#include "platform/folders.hpp"

#include <algorithm>
#include <array>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace corvana {
namespace {

/// Application, plug-in, project and library bundles, those of music software among them.
constexpr std::array<std::string_view, 36> packageExtensions = {
    "aaxplugin",     "action",      "app",       "appex",         "audiounit",   "band",
    "bundle",        "clap",        "component", "docset",        "fcpbundle",   "framework",
    "imovielibrary", "kext",        "key",       "logicx",        "lpx",         "mpkg",
    "musiclibrary",  "numbers",     "pages",     "photoslibrary", "pkg",         "plugin",
    "prefpane",      "qlgenerator", "rtfd",      "saver",         "scptd",       "tvlibrary",
    "vst",           "vst3",        "wdgt",      "xcodeproj",     "xcworkspace", "xpc"};

struct Entry {
  std::string name;
  bool isFolder;
};

using Folder = std::unique_ptr<DIR, int (*)(DIR*)>;

bool isFolderEntry(const dirent& entry, const DIR& folder) {
  if (entry.d_type != DT_UNKNOWN) return entry.d_type == DT_DIR;
  struct stat status {};
  const int descriptor = ::dirfd(const_cast<DIR*>(&folder));
  return ::fstatat(descriptor, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
         S_ISDIR(status.st_mode);
}

std::vector<Entry> visibleEntries(const std::string& path) {
  std::vector<Entry> entries;
  const Folder folder(::opendir(path.c_str()), ::closedir);
  if (!folder) return entries;
  while (const dirent* entry = ::readdir(folder.get())) {
    if (entry->d_name[0] == '.') continue;
    entries.push_back({entry->d_name, isFolderEntry(*entry, *folder)});
  }
  std::sort(entries.begin(), entries.end(),
            [](const Entry& a, const Entry& b) { return a.name < b.name; });
  return entries;
}

/// The entries of one folder on the way down, and how many of them have been visited.
struct Level {
  std::vector<Entry> entries;
  std::size_t visited;
  std::size_t pathLength;
};

}  // namespace

void searchFolder(const std::filesystem::path& folder, const FolderVisitor& visitor) {
  std::string path = folder.native();
  if (!path.ends_with('/')) path += '/';
  // A stack of our own: how deep folders nest is the disk's choice, not ours.
  std::vector<Level> levels;
  levels.push_back({visibleEntries(path), 0, path.size()});
  while (!levels.empty()) {
    Level& level = levels.back();
    path.resize(level.pathLength);
    if (level.visited == level.entries.size()) {
      levels.pop_back();
      continue;
    }
    const Entry& entry = level.entries[level.visited++];
    path += entry.name;
    if (!entry.isFolder) {
      visitor.file(path);
    } else if (visitor.folder(entry.name) == Descend::yes && !isPackageName(entry.name)) {
      path += '/';
      levels.push_back({visibleEntries(path), 0, path.size()});
    }
  }
}

bool isPackageName(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  if (dot == std::string_view::npos || dot == 0) return false;
  std::string extension(name.substr(dot + 1));
  for (char& letter : extension)
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  return std::find(packageExtensions.begin(), packageExtensions.end(), extension) !=
         packageExtensions.end();
}

}  // namespace corvana
