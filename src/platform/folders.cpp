#include "platform/folders.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <utility>
#include <vector>

#include "platform/files.hpp"

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

FileDescriptor openFolder(const FileDescriptor& parent, const char* name, int flags = 0) {
  return FileDescriptor(uninterrupted([&] {
    return ::openat(parent.number() < 0 ? AT_FDCWD : parent.number(), name,
                    O_RDONLY | O_DIRECTORY | O_CLOEXEC | flags);
  }));
}

bool isFolderEntry(const dirent& entry, const FileDescriptor& folder) {
#if CORVANA_HAS_ENTRY_TYPES
  if (entry.d_type != DT_UNKNOWN) return entry.d_type == DT_DIR;
#endif
  struct stat status {};
  return ::fstatat(folder.number(), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
         S_ISDIR(status.st_mode);
}

/// Appends the entries that are not hidden, in order. The system's error number where the listing
/// breaks off, else 0.
int listVisible(const FileDescriptor& folder, std::vector<Entry>& entries) {
  // A listing closes its descriptor at the end; this one goes on being needed.
  FileDescriptor own(::fcntl(folder.number(), F_DUPFD_CLOEXEC, 0));
  const std::unique_ptr<DIR, int (*)(DIR*)> listing(
      own.number() < 0 ? nullptr : ::fdopendir(own.number()), ::closedir);
  if (!listing) return errno;
  own.release();
  errno = 0;
  while (const dirent* entry = ::readdir(listing.get())) {
    if (entry->d_name[0] != '.') entries.push_back({entry->d_name, isFolderEntry(*entry, folder)});
    errno = 0;
  }
  const int errorNumber = errno;
  std::sort(entries.begin(), entries.end(),
            [](const Entry& a, const Entry& b) { return a.name < b.name; });
  return errorNumber;
}

/// A folder on the way down, and how many of its entries have been visited.
struct Level {
  FileDescriptor folder;  ///< closed while the search is far below
  FolderIdentity identity;
  std::vector<Entry> entries;
  std::size_t visited = 0;
  std::size_t pathLength = 0;
};

/// How many folders of a way down stay open. Deeper ways than this are rare, and a program may
/// have only so many files open.
constexpr std::size_t maxOpenLevels = 64;

class Search {
 public:
  explicit Search(const FolderVisitor& visitor) : visitor_(visitor) {}

  void run(const std::filesystem::path& root) {
    path_ = root.native();
    if (!path_.ends_with('/')) path_ += '/';
    enter(openFolder({}, path_.c_str()));
    // A stack of our own: how deep folders nest is the disk's choice, not ours.
    while (!levels_.empty()) {
      Level& level = levels_.back();
      path_.resize(level.pathLength);
      if (level.visited == level.entries.size()) {
        leave();
        continue;
      }
      const Entry& entry = level.entries[level.visited++];
      path_ += entry.name;
      if (!entry.isFolder) {
        visitor_.file(path_);
      } else if (visitor_.folder(entry.name) == Descend::yes && !isPackageName(entry.name)) {
        path_ += '/';
        enter(openFolder(level.folder, entry.name.c_str(), O_NOFOLLOW));
      }
    }
  }

 private:
  void enter(FileDescriptor folder) {
    if (folder.number() < 0) return visitor_.unreadable(path_, errno);
    Level level;
    level.identity = identityOf(folder);
    if (!levels_.empty() && level.identity == visitor_.except) return;
    level.pathLength = path_.size();
    if (const int errorNumber = listVisible(folder, level.entries); errorNumber != 0)
      visitor_.unreadable(path_, errorNumber);
    level.folder = std::move(folder);
    levels_.push_back(std::move(level));
    if (levels_.size() > maxOpenLevels)
      FileDescriptor(std::move(levels_[levels_.size() - 1 - maxOpenLevels].folder));
  }

  void leave() {
    const FileDescriptor left = std::move(levels_.back().folder);
    levels_.pop_back();
    if (levels_.empty() || levels_.back().folder.number() >= 0) return;
    FileDescriptor above = openFolder(left, "..");
    const int errorNumber = above.number() < 0 ? errno : ESTALE;
    if (above.number() >= 0 && identityOf(above) == levels_.back().identity) {
      levels_.back().folder = std::move(above);
      return;
    }
    // Somebody has moved the folder below to another place: the way back is lost.
    path_.resize(levels_.back().pathLength);
    visitor_.unreadable(path_, errorNumber);
    levels_.clear();
  }

  const FolderVisitor& visitor_;
  std::string path_;
  std::vector<Level> levels_;
};

}  // namespace

void searchFolder(const std::filesystem::path& folder, const FolderVisitor& visitor) {
  Search(visitor).run(folder);
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
