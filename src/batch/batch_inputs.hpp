// The inputs of one batch, asked whether a name of an output is one of theirs.
#pragma once

#include <cstdint>
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

  /// Whether one of the inputs has this name in this folder, whatever it now leads to.
  bool containName(const Folder& folder, const std::string& name) const;

 private:
  std::unordered_multimap<std::string, const AudioFile*> filesOfName_;  ///< by foldedName
};

/// An input whose output would have the name of another one; both without their folders.
struct NameClash {
  std::string input;
  std::string other;
};

struct NameClashes {
  std::int64_t count = 0;
  NameClash first;  ///< empty where there are none
};

/// The cases of it among `files`, as far as extensions tell. Rather one too many than none, since
/// file systems differ in which names are the same (foldedName).
NameClashes findNameClashes(const std::vector<AudioFile>& files, bool useSubfolder);

}  // namespace corvana
