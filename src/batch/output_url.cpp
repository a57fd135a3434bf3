#include "batch/output_url.hpp"

#include <cerrno>
#include <cstdint>

#include "platform/texts.hpp"

namespace corvana {
namespace {

std::string baseName(std::string_view inputName) {
  return std::filesystem::path(inputName).stem().native();
}

std::string extension(bool isAIFF) {
  return isAIFF ? ".wav" : ".aif";
}

}  // namespace

InputFolder::InputFolder(const AudioFile& file)
    : path_(file.folder()), folder_(openFoundFolder(path_, file.namedLength)) {}

const Folder* InputFolder::subfolder(const std::string& name) {
  if (subfolder_ && subfolder_->path().filename() == name) return &*subfolder_;
  try {
    return &subfolder_.emplace(folder_.open(name));
  } catch (const std::system_error&) {
    return nullptr;
  }
}

OutputTarget makeOutputURL(InputFolder& folder, const InputFile& input, bool isAIFF,
                           const BatchOptions& options, const BatchInputs& inputs) {
  const std::string subfolder = outputSubfolder(isAIFF, options.useSubfolder);
  const Folder* const place = subfolder.empty() ? &folder.folder() : folder.subfolder(subfolder);
  OutputTarget target{.folder = place ? *place : folder.folder(),
                      .missingFolders = place ? std::string() : subfolder,
                      .name = outputName(input.identity().name, isAIFF),
                      .replaceExisting = options.overwrite,
                      .safe = options.safe,
                      .input = input.identity(),
                      .permissions = input.permissions()};
  const auto mayReplace = [&] {
    if (!options.overwrite) return false;
    if (place == &folder.folder() && target.name == input.identity().name) return false;
    if (place->mayLeadTo(target.name, input.identity())) return false;
    if (options.clash == InputClash::replace || !inputs.contains(*place, target.name)) return true;
    if (options.clash == InputClash::fail)
      throw FileError(EEXIST,
                      localised("'%1$@' is to be converted as well – use --to, --subfolder or "
                                "--overwrite-inputs."),
                      target.name);
    return false;
  };
  for (std::uint64_t n = 1; place && place->nameExists(target.name) && !mayReplace(); ++n)
    target.name =
        baseName(input.identity().name) + " (" + std::to_string(n) + ")" + extension(isAIFF);
  return target;
}

std::string outputSubfolder(bool isAIFF, bool useSubfolder) {
  if (!useSubfolder) return {};
  return isAIFF ? "WAV" : "AIFF";
}

std::string outputName(std::string_view inputName, bool isAIFF) {
  return baseName(inputName) + extension(isAIFF);
}

}  // namespace corvana
