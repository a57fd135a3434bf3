// Which files a batch converts.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.hpp"

namespace corvana {

/// A file to convert. Plain texts, of which the files of a folder share one: making path objects of
/// a large library takes nearly as long as finding it, and a text for each path a tenth of that.
struct AudioFile {
  std::shared_ptr<const std::string> place;  ///< the path up to the name, with its slash
  std::string fileName;                      ///< the last part of the path
  std::size_t namedLength = 0;  ///< how much of the path, folders only, the user has named
  /// As they were before a look at the file may have changed them; null: nobody looked.
  std::shared_ptr<const FileTimes> earlierTimes = {};

  std::string path() const { return *place + fileName; }
  std::string_view folder() const;  ///< of the path; empty for a file of the current folder
  std::string_view name() const { return fileName; }
  /// Where it lies in the tree that was searched: the path of its folder from the named one on,
  /// whose name is the first part (none for ".", ".." and "/"). Empty for a named file.
  std::string_view folderInTree() const;
};

/// A file that the user has named.
AudioFile audioFileAt(std::string_view path);

/// Something that a search has left out, and why.
struct LeftOut {
  std::string path;
  std::string reason;
  bool mayHideFiles = false;  ///< a folder that could not be read, a path that does not exist
};

struct FoundFiles {
  std::vector<AudioFile> files;
  std::vector<LeftOut> leftOut;
};

/// Expands files and folders, in the given order; folders are searched in depth. Of what the
/// user has named, files of another extension are left out; in a search they are nothing to speak
/// of. Nor does a search look into `outputFolder`.
FoundFiles collectAudioFiles(const std::vector<std::filesystem::path>& urls,
                             const std::filesystem::path& outputFolder = {});

}  // namespace corvana
