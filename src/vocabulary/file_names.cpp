#include "vocabulary/file_names.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>

namespace corvana {
namespace {

/// Application, plug-in, project and library bundles, those of music software among them.
constexpr std::array<std::string_view, 36> packageExtensions = {
    "aaxplugin",     "action",      "app",       "appex",         "audiounit",   "band",
    "bundle",        "clap",        "component", "docset",        "fcpbundle",   "framework",
    "imovielibrary", "kext",        "key",       "logicx",        "lpx",         "mpkg",
    "musiclibrary",  "numbers",     "pages",     "photoslibrary", "pkg",         "plugin",
    "prefpane",      "qlgenerator", "rtfd",      "saver",         "scptd",       "tvlibrary",
    "vst",           "vst3",        "wdgt",      "xcodeproj",     "xcworkspace", "xpc"};

std::string baseName(std::string_view inputName) {
  const std::size_t dot = inputName.rfind('.');
  return std::string(dot == 0 ? inputName : inputName.substr(0, dot));
}

std::string extension(bool isAIFF) {
  return isAIFF ? ".wav" : ".aif";
}

}  // namespace

bool hasAudioExtension(std::string_view path) {
  const std::size_t dot = path.rfind('.');
  if (dot == std::string_view::npos || dot == 0 || path[dot - 1] == '/') return false;
  const std::string_view extension = path.substr(dot + 1);  // with a slash, it is none of these
  const auto matches = [&](std::string_view known) {
    return std::equal(extension.begin(), extension.end(), known.begin(), known.end(),
                      [](char letter, char lower) {
                        return (letter >= 'A' && letter <= 'Z' ? letter - 'A' + 'a' : letter) ==
                               lower;
                      });
  };
  return std::any_of(std::begin(audioExtensions), std::end(audioExtensions), matches);
}

bool isOutputFolder(std::string_view name) {
  return std::find(std::begin(outputFolderNames), std::end(outputFolderNames), name) !=
         std::end(outputFolderNames);
}

bool isPackageName(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  if (dot == std::string_view::npos || dot == 0) return false;
  std::string extension(name.substr(dot + 1));
  for (char& letter : extension)
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  return std::find(packageExtensions.begin(), packageExtensions.end(), extension) !=
         packageExtensions.end();
}

std::string outputSubfolder(bool isAIFF) {
  return isAIFF ? "WAV" : "AIFF";
}

std::string outputName(std::string_view inputName, bool isAIFF) {
  return baseName(inputName) + extension(isAIFF);
}

std::string freeOutputName(std::string_view inputName, bool isAIFF,
                           const std::function<bool(const std::string& name)>& mayTake) {
  std::string name = outputName(inputName, isAIFF);
  for (std::uint64_t n = 1; !mayTake(name); ++n)
    name = baseName(inputName) + " (" + std::to_string(n) + ")" + extension(isAIFF);
  return name;
}

}  // namespace corvana
