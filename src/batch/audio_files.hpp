// Which files a batch converts.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace corvana {

/// The extensions of convertible files, in lower case, without the dot.
inline constexpr std::string_view audioExtensions[] = {"wav", "wave", "aif", "aiff", "aifc"};

/// Subfolders that outputs are written to; a search does not look into them. Case-sensitive.
inline constexpr std::string_view outputFolderNames[] = {"AIFF", "WAV"};

/// Whether the extension of `path` is in audioExtensions, in any case of letters.
bool hasAudioExtension(std::string_view path);

/// Expands files and folders, in the given order; folders are searched in depth. What does not
/// exist or has another extension is left out without a message. The results are paths, as
/// plain texts: making path objects of a large library takes nearly as long as finding it.
std::vector<std::string> collectAudioFiles(const std::vector<std::filesystem::path>& urls);

}  // namespace corvana
