// Deep search of a folder, in an order that repeats.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>

#include "platform/files.hpp"

namespace corvana {

/// What the visitor of a folder search says about a folder it is shown.
enum class Descend { yes, no };

/// What a search finds: every item below a folder, but not what lies inside packages.
struct FolderVisitor {
  /// Any item that is not a folder, symbolic links to folders included.
  std::function<void(std::string_view path)> file;
  /// A folder, by its own name; the answer decides whether its content is visited.
  std::function<Descend(std::string_view name)> folder;
  /// A folder whose content is not, or not all, visited, and the system's reason.
  std::function<void(std::string_view path, int errorNumber)> unreadable;
  /// A folder that is left out wherever the search comes across it.
  std::optional<InodeIdentity> except = {};
};

/// Visits everything below `folder`, depth first, the entries of each folder in byte order of
/// their names. Hidden entries (leading dot), the content of packages (isPackageName) and
/// folders behind symbolic links are left out. Folders may nest deeper than any path is long.
void searchFolder(const std::filesystem::path& folder, const FolderVisitor& visitor);

}  // namespace corvana
