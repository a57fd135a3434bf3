// What the output of a file is called, and where it goes.
#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "batch/batch_inputs.hpp"
#include "batch/batch_options.hpp"
#include "batch/run_outputs.hpp"
#include "output/output_file.hpp"
#include "platform/folder.hpp"

namespace corvana {

/// The folder of some inputs, open, with that of their outputs as far as it exists.
class InputFolder {
 public:
  /// Fails with a std::system_error.
  explicit InputFolder(const AudioFile& file);

  bool isOf(const AudioFile& file) const { return file.folder() == path_; }
  const Folder& folder() const { return folder_; }

  /// Where the output of `file`, one of its files, goes: beside it, into the subfolder "WAV" or
  /// "AIFF", or to the same place of the tree below the output folder. Holds until the next call.
  OutputPlace outputPlace(const AudioFile& file, bool isAIFF, const BatchOptions& options);

 private:
  std::string path_;
  Folder folder_;
  /// Where outputs of one direction go.
  struct Outputs {
    std::optional<Folder> folder;  ///< the innermost that exists of wantedPath
    std::filesystem::path wantedPath;
    std::filesystem::path missingFolders;
  };
  std::array<Outputs, 2> outputs_;  ///< to AIFF, to WAV
};

/// Opens the folder of an input. Fails with a FileError.
InputFolder openFolderOf(const AudioFile& file);

/// What decides about the names of a batch.
struct BatchNames {
  BatchOptions options;
  BatchInputs inputs;  ///< that are not to be replaced
  RunOutputs outputs = {};
};

/// The path of a complete output of `input` in `place`, under its name without a number, that is
/// not older than the input; absent where there is none. One that this batch has made is another
/// input's.
std::optional<std::filesystem::path> currentOutput(const OutputPlace& place, const InputFile& input,
                                                   bool isAIFF, const BatchNames& names);

/// The name of an output is that of another input of its batch, which is not to be replaced.
class InputClashError : public FileError {
 public:
  /// `name` is that of the other input, without its folder.
  explicit InputClashError(const std::string& name);
  const std::string& name() const { return name_; }

 private:
  std::string name_;
};

/// What the output of `input`, a file of `folder`, is called in `place`: the input's base name with
/// the extension of the other format. Where that name is taken, the first free one of "name (1)",
/// "name (2)" …; with overwriting a taken name is good, unless it leads to the input itself. Fails
/// with a FileError, an InputClashError where the options say so.
OutputTarget makeOutputURL(const InputFolder& folder, const OutputPlace& place,
                           const InputFile& input, bool isAIFF, const BatchNames& names);

}  // namespace corvana
