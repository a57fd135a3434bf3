#include "batch/audio_files.hpp"

#include <algorithm>
#include <string>
#include <system_error>

#include "platform/folders.hpp"

namespace corvana {

namespace fs = std::filesystem;

bool hasAudioExtension(std::string_view path) {
  const std::string_view name = path.substr(path.rfind('/') + 1);
  const std::size_t dot = name.rfind('.');
  if (dot == std::string_view::npos || dot == 0) return false;
  const std::string_view extension = name.substr(dot + 1);
  const auto matches = [&](std::string_view known) {
    return std::equal(extension.begin(), extension.end(), known.begin(), known.end(),
                      [](char letter, char lower) {
                        return (letter >= 'A' && letter <= 'Z' ? letter - 'A' + 'a' : letter) ==
                               lower;
                      });
  };
  return std::any_of(std::begin(audioExtensions), std::end(audioExtensions), matches);
}

std::vector<std::string> collectAudioFiles(const std::vector<fs::path>& urls) {
  std::vector<std::string> files;
  const auto addFile = [&files](std::string_view path) {
    if (hasAudioExtension(path)) files.emplace_back(path);
  };
  const auto enterFolder = [](std::string_view name) {
    const bool isOutput = std::find(std::begin(outputFolderNames), std::end(outputFolderNames),
                                    name) != std::end(outputFolderNames);
    return isOutput ? Descend::no : Descend::yes;
  };
  for (const fs::path& url : urls) {
    std::error_code error;
    const fs::file_status status = fs::status(url, error);
    if (!fs::exists(status)) continue;
    if (fs::is_directory(status)) {
      searchFolder(url, {addFile, enterFolder});
    } else {
      addFile(url.native());
    }
  }
  return files;
}

}  // namespace corvana
