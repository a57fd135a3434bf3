#include "platform/folders.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <span>
#include <string>
#include <sys/stat.h>
#include <utility>
#include <vector>

#include "platform/files.hpp"
#include "vocabulary/file_names.hpp"

namespace corvana {
namespace {

/// An open folder that can be listed. Empty: none.
using OpenFolder = std::unique_ptr<DIR, int (*)(DIR*)>;

/// Empty where that fails, with the reason in errno.
OpenFolder openFolder(int parent, const char* name, int flags = 0) {
  FileDescriptor folder(uninterrupted(
      [&] { return ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | flags); }));
  OpenFolder listing(folder.number() < 0 ? nullptr : ::fdopendir(folder.number()), ::closedir);
  if (listing) folder.release();
  return listing;
}

InodeIdentity identityOf(const OpenFolder& folder) {
  struct stat status {};
  if (::fstat(::dirfd(folder.get()), &status) != 0) return {};
  return {status.st_dev, status.st_ino};
}

bool isFolderEntry(const dirent& entry, const OpenFolder& folder) {
#if CORVANA_HAS_ENTRY_TYPES
  if (entry.d_type != DT_UNKNOWN) return entry.d_type == DT_DIR;
#endif
  struct stat status {};
  return ::fstatat(::dirfd(folder.get()), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
         S_ISDIR(status.st_mode);
}

/// The visible entries of all folders on a way down, those of the innermost last. Their names lie
/// one behind the other: to ask for memory for each takes longer than to read it.
class Entries {
 public:
  /// The end of what there is.
  struct End {
    std::size_t entries = 0;
    std::size_t names = 0;
  };

  End end() const { return {entries_.size(), names_.size()}; }
  /// Takes away what was added since.
  void cut(const End& end) {
    entries_.resize(end.entries);
    names_.resize(end.names);
  }

  bool isFolder(std::size_t index) const { return entries_[index].isFolder; }
  /// A NUL follows it. Holds until something is added.
  std::string_view name(std::size_t index) const { return nameOf(entries_[index]); }

  /// Adds those of a folder, in byte order of their names. The system's error number where the
  /// listing breaks off, else 0.
  int add(const OpenFolder& folder) {
    const std::size_t first = entries_.size();
    errno = 0;
    while (const dirent* entry = ::readdir(folder.get())) {
      if (entry->d_name[0] != '.') {
        const std::size_t length = std::strlen(entry->d_name);
        entries_.push_back(
            {0, names_.size(), static_cast<std::uint32_t>(length), isFolderEntry(*entry, folder)});
        names_.append(entry->d_name, length + 1);
      }
      errno = 0;
    }
    const int errorNumber = errno;
    sort(std::span(entries_).subspan(first));
    return errorNumber;
  }

 private:
  struct Entry {
    std::uint64_t key;  ///< sorts like the first bytes that tell names of the folder apart
    std::size_t place;  ///< of the name
    std::uint32_t length;
    bool isFolder;
  };

  std::string_view nameOf(const Entry& entry) const {
    return std::string_view(names_).substr(entry.place, entry.length);
  }

  void sort(std::span<Entry> entries) {
    if (entries.size() < 2) return;
    std::string_view common = nameOf(entries.front());
    for (const Entry& entry : entries)
      if (!nameOf(entry).starts_with(common)) common = commonStart(common, nameOf(entry));
    for (Entry& entry : entries)
      entry.key = keyOf(nameOf(entry).substr(common.size()));
    std::sort(entries.begin(), entries.end(), [this](const Entry& a, const Entry& b) {
      return a.key != b.key ? a.key < b.key : nameOf(a) < nameOf(b);
    });
  }

  static std::string_view commonStart(std::string_view a, std::string_view b) {
    const auto ends = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
    return a.substr(0, static_cast<std::size_t>(ends.first - a.begin()));
  }

  static std::uint64_t keyOf(std::string_view name) {
    std::array<unsigned char, sizeof(std::uint64_t)> bytes{};
    std::memcpy(bytes.data(), name.data(), std::min(name.size(), bytes.size()));
    std::uint64_t key = 0;
    for (const unsigned char byte : bytes)
      key = key << 8 | byte;
    return key;
  }

  std::vector<Entry> entries_;
  std::string names_;
};

/// A folder on the way down.
struct Level {
  OpenFolder folder;       ///< closed while the search is far below
  InodeIdentity identity;  ///< of one that was closed
  Entries::End begin;      ///< of its entries, behind those of the folders above
  std::size_t next = 0;    ///< the entry to be visited
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
    enter(openFolder(AT_FDCWD, path_.c_str()));
    // A stack of our own: how deep folders nest is the disk's choice, not ours.
    while (!levels_.empty()) {
      Level& level = levels_.back();
      path_.resize(level.pathLength);
      if (level.next == entries_.end().entries) {
        leave();
        continue;
      }
      const std::size_t index = level.next++;
      const std::string_view name = entries_.name(index);
      path_ += name;
      if (!entries_.isFolder(index)) {
        visitor_.file(path_);
      } else if (visitor_.folder(name) == Descend::yes && !isPackageName(name)) {
        path_ += '/';
        enter(openFolder(::dirfd(level.folder.get()), name.data(), O_NOFOLLOW));
      }
    }
  }

 private:
  void enter(OpenFolder folder) {
    if (!folder) return visitor_.unreadable(path_, errno);
    if (!levels_.empty() && visitor_.except && identityOf(folder) == visitor_.except) return;
    Level level{std::move(folder), {}, entries_.end(), entries_.end().entries, path_.size()};
    if (const int errorNumber = entries_.add(level.folder); errorNumber != 0)
      visitor_.unreadable(path_, errorNumber);
    levels_.push_back(std::move(level));
    if (levels_.size() > maxOpenLevels) closeFarAbove(levels_[levels_.size() - 1 - maxOpenLevels]);
  }

  static void closeFarAbove(Level& level) {
    if (!level.folder) return;
    level.identity = identityOf(level.folder);
    level.folder.reset();
  }

  void leave() {
    const Level left = std::move(levels_.back());
    levels_.pop_back();
    entries_.cut(left.begin);
    if (levels_.empty() || levels_.back().folder) return;
    Level& level = levels_.back();
    OpenFolder above = openFolder(::dirfd(left.folder.get()), "..");
    const int errorNumber = above ? ESTALE : errno;
    if (above && identityOf(above) == level.identity) {
      level.folder = std::move(above);
      return;
    }
    // Somebody has moved the folder below to another place: the way back is lost.
    path_.resize(level.pathLength);
    visitor_.unreadable(path_, errorNumber);
    levels_.clear();
  }

  const FolderVisitor& visitor_;
  std::string path_;
  Entries entries_;
  std::vector<Level> levels_;
};

}  // namespace

void searchFolder(const std::filesystem::path& folder, const FolderVisitor& visitor) {
  Search(visitor).run(folder);
}

}  // namespace corvana
