// What the output of a file is called.
#pragma once

#include <filesystem>

#include "platform/files.hpp"

namespace corvana {

/// Where the output of `input` goes: beside it or in the subfolder "WAV" or "AIFF", under the
/// input's base name with the extension of the other format. Where that name is taken, the
/// first free one of "name (1)", "name (2)" …; with `overwrite` a taken name is good, unless it
/// leads to the input itself (`inputIdentity`).
std::filesystem::path makeOutputURL(const std::filesystem::path& input,
                                    const FileIdentity& inputIdentity, bool isAIFF,
                                    bool useSubfolder, bool overwrite);

}  // namespace corvana
