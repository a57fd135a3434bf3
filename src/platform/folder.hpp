// One open folder. What lies in it is named relative to its descriptor, so whoever puts another
// folder or a link in its place afterwards redirects nothing, and no path is too long.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "platform/files.hpp"

namespace corvana {

class Folder {
 public:
  /// Opens a folder that a person has named (empty: the current one), through whatever links.
  /// Fails with a std::system_error.
  explicit Folder(const std::filesystem::path& path);

  /// Opens the folder `name` inside. A link counts only if the user or the system's owner made
  /// it: anybody else's would lead the output to a place of their choice. Fails with a
  /// std::system_error.
  Folder open(const std::string& name) const;

  /// The same, or a new folder where there is none of this name. Fails with a FileError.
  Folder make(const std::string& name) const;

  /// Fails as make would, as far as that shows without making anything. What is already there may
  /// be the folder.
  void rehearseMaking(const std::string& name) const;

  /// Not by two threads at once.
  InodeIdentity identity() const;

  /// For messages.
  const std::filesystem::path& path() const { return path_; }
  int number() const { return descriptor_.number(); }

  /// Whether the name is taken: by a file, a folder, or a link, even one that leads nowhere.
  bool nameExists(const std::string& name) const;

  /// Whether `name` leads to this file (links followed). Also true where the system cannot tell,
  /// and where it may tell one file by two names from two files in vain: names that are equal but
  /// for case, with equal sizes and times. Who asks wants to spare the file.
  bool mayLeadTo(const std::string& name, const FileIdentity& file) const;

  /// Whether `name` leads to this file (links followed), and nobody has written to it since.
  bool leadsTo(const std::string& name, const FileIdentity& file) const;

  /// Why the user can make no file or folder `name`, as far as that shows without making it: the
  /// system's error number, 0 where nothing is known to stand against it but a taken name.
  int obstacleToMaking(const std::string& name) const;

  /// Makes a new empty file, open for writing, with these permission bits under the user's mask.
  /// Absent when the name is already taken; never opens what is there. Fails with a FileError.
  std::optional<FileDescriptor> createNewFile(const std::string& name, unsigned permissions) const;

  /// Removes a file, or a symbolic link as such. A folder or special file stays and is an error.
  /// Fails with a FileError.
  void removeFile(const std::string& name) const;

  /// Refuses what removeFile refuses by its kind. Fails with a FileError.
  void checkReplaceable(const std::string& name) const;

  /// Removes a file of this program's own. Never fails.
  void discard(const std::string& name) const;

  /// Gives the file `from` the name `to`, which must be free. Whether it was; if not, nothing has
  /// changed. Fails with a FileError.
  bool moveToFreeName(const std::string& from, const std::string& to) const;

  /// The same in place of the file or link that has the name, in one step: at no moment is there
  /// no file of this name. Refuses what removeFile refuses. Fails with a FileError.
  void moveOver(const std::string& from, const std::string& to) const;

  /// Has names that were given or taken away written to the disk. Fails with a FileError.
  void sync() const;

 private:
  Folder(FileDescriptor descriptor, std::filesystem::path path);

  Folder openMade(const std::string& name) const;

  FileDescriptor descriptor_;
  std::filesystem::path path_;
  mutable std::optional<InodeIdentity> identity_;  ///< once somebody has asked
};

/// Opens the folder at `path`, of which the user has named the first `namedLength` characters. The
/// rest was found in a search; there a link that others made is refused. Fails with a
/// std::system_error.
Folder openFoundFolder(std::string_view path, std::size_t namedLength);

/// Opens the folders of the relative `path`, one inside the other, as far as that is possible, and
/// leaves in `path` those that remain. Absent where not even the first can be opened.
std::optional<Folder> openFolders(const Folder& folder, std::filesystem::path& path);

/// Makes the folders of the relative `path`, one inside the other, where they are missing. Fails
/// with a FileError.
Folder makeFolders(const Folder& folder, const std::filesystem::path& path);

/// The system's reason, as a person understands it.
std::string folderReason(const std::system_error& error);

}  // namespace corvana
