// What the output of a file is called, and where it goes.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "batch/batch_inputs.hpp"
#include "batch/batch_options.hpp"
#include "output/output_file.hpp"
#include "platform/folder.hpp"

namespace corvana {

/// The folder of some inputs, open, with the subfolders of their outputs as far as they exist.
class InputFolder {
 public:
  /// Fails with a std::system_error.
  explicit InputFolder(const AudioFile& file);

  bool isOf(const AudioFile& file) const { return file.folder() == path_; }
  const Folder& folder() const { return folder_; }

  /// Null while there is none, or none that can be used: who makes it learns why.
  const Folder* subfolder(const std::string& name);

 private:
  std::string path_;
  Folder folder_;
  std::optional<Folder> subfolder_;
};

/// Where the output of `input`, a file of `folder`, goes: beside it or in the subfolder "WAV" or
/// "AIFF", under the input's base name with the extension of the other format. Where that name is
/// taken, the first free one of "name (1)", "name (2)" …; with overwriting a taken name is good,
/// unless it leads to the input itself. `inputs` are those of the whole batch. Fails with a
/// FileError.
OutputTarget makeOutputURL(InputFolder& folder, const InputFile& input, bool isAIFF,
                           const BatchOptions& options, const BatchInputs& inputs);

/// "AIFF" or "WAV", empty without subfolders.
std::string outputSubfolder(bool isAIFF, bool useSubfolder);

/// The name of an output without a number.
std::string outputName(std::string_view inputName, bool isAIFF);

}  // namespace corvana
