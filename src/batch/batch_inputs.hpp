// The inputs of one batch, asked whether a name of an output is one of theirs.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "batch/audio_files.hpp"
#include "platform/folder.hpp"

namespace corvana {

class BatchInputs {
 public:
  /// `files` outlive it.
  explicit BatchInputs(const std::vector<AudioFile>& files);

  /// Whether the file `name` is one of the inputs, by whatever way it was named.
  bool contains(const Folder& folder, const std::string& name) const;

 private:
  std::unordered_multimap<std::string, const AudioFile*> filesOfName_;  ///< by foldedName
};

/// Whether the outputs of some files would have the names of others, as far as extensions tell.
bool wantEachOthersNames(const std::vector<AudioFile>& files, bool useSubfolder);

}  // namespace corvana
