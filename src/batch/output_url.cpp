#include "batch/output_url.hpp"

#include <cerrno>
#include <cstdint>

#include "convert/detect_format.hpp"
#include "platform/texts.hpp"
#include "vocabulary/chunks.hpp"
#include "vocabulary/file_names.hpp"

namespace corvana {
namespace {

/// Opens as much of a path that the user has named as exists, and leaves the rest in it.
Folder openNamedFolder(std::filesystem::path& path) {
  std::filesystem::path existing = path;
  for (path.clear();; existing = existing.parent_path()) {
    try {
      return Folder(existing);
    } catch (const std::system_error& error) {
      if (existing.empty() || error.code() != std::errc::no_such_file_or_directory)
        failCreating(error.code().value(), existing);
    }
    path = path.empty() ? existing.filename() : existing.filename() / path;
  }
}

/// Whether a file holds all that its header speaks of. A conversion that was cut short leaves less.
bool isComplete(ByteView file, bool isAIFF) {
  const Fields header(file, isAIFF ? ByteOrder::big : ByteOrder::little);
  return detectFormat(file) == isAIFF && file.size() - chunkHeaderSize >= header.u32(4);
}

}  // namespace

InputFolder::InputFolder(const AudioFile& file)
    : path_(file.folder()), folder_(openFoundFolder(path_, file.namedLength)) {}

InputFolder openFolderOf(const AudioFile& file) {
  try {
    return InputFolder(file);
  } catch (const std::system_error& error) {
    throw FileError(error.code().value(), localised("Cannot read '%1$@': %2$@"), file.path(),
                    folderReason(error));
  }
}

OutputPlace InputFolder::outputPlace(const AudioFile& file, bool isAIFF,
                                     const BatchOptions& options) {
  const bool isElsewhere = !options.outputFolder.empty();
  if (!isElsewhere && !options.useSubfolder) return {folder_};
  std::filesystem::path wanted(isElsewhere ? std::string(file.folderInTree())
                                           : outputSubfolder(isAIFF));
  auto& [outputs, wantedPath, missingFolders] = outputs_[isAIFF ? 1 : 0];
  if (!outputs || !missingFolders.empty() || wanted.native() != wantedPath.native()) {
    wantedPath = wanted;
    outputs.reset();
    missingFolders.clear();
    if (isElsewhere) {
      missingFolders = options.outputFolder;
      outputs = openNamedFolder(missingFolders);
    }
    if (missingFolders.empty()) {
      missingFolders = std::move(wanted);
      auto inner = openFolders(outputs ? *outputs : folder_, missingFolders);
      if (inner) outputs = std::move(inner);
    } else if (!wanted.empty()) {
      missingFolders /= wanted;
    }
  }
  return {outputs ? *outputs : folder_, missingFolders};
}

std::optional<std::filesystem::path> currentOutput(const OutputPlace& place, const InputFile& input,
                                                   bool isAIFF, const BatchNames& names) {
  const std::string name = outputName(input.identity().name, isAIFF);
  if (!place.nameExists(name) || place.folder.mayLeadTo(name, input.identity()) ||
      names.outputs.contain(place, name))
    return std::nullopt;
  std::filesystem::path path = place.folder.path() / name;
  try {
    const InputFile output(place.folder, name, path, names.options.accessTime());
    const bool isCurrent = output.identity().modified >= input.identity().modified &&
                           output.read([&](ByteView file) { return isComplete(file, !isAIFF); });
    return isCurrent ? std::optional(std::move(path)) : std::nullopt;
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

InputClashError::InputClashError(const std::string& name)
    : FileError(EEXIST,
                localised("'%1$@' is to be converted as well – use --to, --subfolder or "
                          "--overwrite-inputs."),
                name),
      name_(name) {}

OutputTarget makeOutputURL(const InputFolder& folder, const OutputPlace& place,
                           const InputFile& input, bool isAIFF, const BatchNames& names) {
  const BatchOptions& options = names.options;
  const auto isRehearsed = [&](const std::string& name) {
    return options.dryRun && names.outputs.contain(place, name);
  };
  const auto mayReplace = [&](const std::string& name) {
    if (!options.overwrite) return false;
    const bool isBesideInput = &place.folder == &folder.folder() && place.missingFolders.empty();
    if (isBesideInput && name == input.identity().name) return false;
    const bool isOurs = isRehearsed(name);
    if (!isOurs && place.folder.mayLeadTo(name, input.identity())) return false;
    // An input that led nowhere has been replaced, and is an input still.
    const bool isInput =
        isOurs ? place.missingFolders.empty() && names.inputs.containName(place.folder, name)
               : names.inputs.contains(place.folder, name);
    if (options.clash == InputClash::replace || !isInput) return true;
    if (options.clash == InputClash::fail) throw InputClashError(name);
    return false;
  };
  const auto mayTake = [&](const std::string& name) {
    const bool isTaken = place.nameExists(name) || isRehearsed(name);
    return !isTaken || mayReplace(name);
  };
  return {.folder = place.folder,
          .missingFolders = place.missingFolders,
          .name = freeOutputName(input.identity().name, isAIFF, mayTake),
          .replaceExisting = options.overwrite,
          .safe = options.safe,
          .input = input.identity(),
          .permissions = input.permissions()};
}

}  // namespace corvana
