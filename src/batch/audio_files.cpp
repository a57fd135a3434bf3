#include "batch/audio_files.hpp"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "platform/folders.hpp"
#include "platform/texts.hpp"
#include "vocabulary/file_names.hpp"

namespace corvana {

namespace fs = std::filesystem;

AudioFile audioFileAt(std::string_view path) {
  const std::size_t start = path.rfind('/') + 1;
  return {std::make_shared<const std::string>(path.substr(0, start)),
          std::string(path.substr(start)), path.size()};
}

std::string_view AudioFile::folder() const {
  const std::string_view path = *place;
  return path.substr(0, path.size() > 1 ? path.size() - 1 : path.size());
}

std::string_view AudioFile::folderInTree() const {
  if (namedLength >= place->size() + fileName.size()) return {};
  std::string_view named(*place);
  named = named.substr(0, namedLength);
  named = named.substr(0, named.find_last_not_of('/') + 1);
  const std::size_t nameStart = named.rfind('/') + 1;
  const std::string_view name = named.substr(nameStart);
  const bool isNameless = name.empty() || name == "." || name == "..";
  std::string_view tree = folder();
  tree.remove_prefix(std::min(isNameless ? namedLength : nameStart, tree.size()));
  return tree.substr(std::min(tree.find_first_not_of('/'), tree.size()));
}

namespace {

/// Adds a file of a folder. Room that nothing is put into costs nothing, while files that move
/// into a larger one leave memory behind that the system has filled with zeros in vain.
void addFound(std::vector<AudioFile>& files, std::string_view path, std::size_t namedLength) {
  constexpr std::size_t firstRoom = 1 << 17;
  if (files.size() == files.capacity()) files.reserve(std::max(firstRoom, 4 * files.size()));
  const std::string_view place = path.substr(0, path.rfind('/') + 1);
  const bool isNeighbour = !files.empty() && *files.back().place == place;
  auto text = isNeighbour ? files.back().place : std::make_shared<const std::string>(place);
  files.push_back({std::move(text), std::string(path.substr(place.size())), namedLength});
}

}  // namespace

FoundFiles collectAudioFiles(const std::vector<fs::path>& urls, const fs::path& outputFolder) {
  FoundFiles found;
  std::size_t namedLength = 0;
  const auto leaveOut = [&found](std::string_view path, int errorNumber) {
    found.leftOut.push_back(
        {std::string(path), std::generic_category().message(errorNumber), true});
  };
  std::optional<InodeIdentity> except;
  if (!outputFolder.empty())
    if (const auto identity = identityOf(outputFolder))
      except = {identity->device, identity->inode};
  const FolderVisitor visitor{
      .file =
          [&](std::string_view path) {
            if (hasAudioExtension(path)) addFound(found.files, path, namedLength);
          },
      .folder =
          [](std::string_view name) { return isOutputFolder(name) ? Descend::no : Descend::yes; },
      .unreadable = leaveOut,
      .except = except};
  for (const fs::path& url : urls) {
    std::error_code error;
    const fs::file_status status = fs::status(url, error);
    if (!fs::exists(status)) {
      leaveOut(url.native(), error ? error.value() : ENOENT);
    } else if (fs::is_directory(status)) {
      namedLength = url.native().size();
      searchFolder(url, visitor);
    } else if (hasAudioExtension(url.native())) {
      found.files.push_back(audioFileAt(url.native()));
    } else {
      found.leftOut.push_back({url.native(), localised("Not a WAV or AIFF file by its extension")});
    }
  }
  return found;
}

}  // namespace corvana
