// Which files a batch converts, and what their outputs are called.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.hpp"

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

/// Where the output of `input` goes: beside it or in the subfolder "WAV" or "AIFF", under the
/// input's base name with the extension of the other format. Where that name is taken, the
/// first free one of "name (1)", "name (2)" …; with `overwrite` a taken name is good, unless it
/// leads to the input itself (`inputIdentity`).
std::filesystem::path makeOutputURL(const std::filesystem::path& input,
                                    const FileIdentity& inputIdentity, bool isAIFF,
                                    bool useSubfolder, bool overwrite);

}  // namespace corvana
