// The names of inputs and outputs.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace corvana {

/// The extensions of convertible files, in lower case, without the dot.
inline constexpr std::string_view audioExtensions[] = {"wav", "wave", "aif", "aiff", "aifc"};

/// Subfolders that outputs are written to; a search does not look into them. Case-sensitive.
inline constexpr std::string_view outputFolderNames[] = {"AIFF", "WAV"};

/// Whether the extension of `path` is in audioExtensions, in any case of letters.
bool hasAudioExtension(std::string_view path);

/// Whether a folder of this name is in outputFolderNames.
bool isOutputFolder(std::string_view name);

/// Whether a folder of this name is shown to the user as one document or program: its
/// extension is a known bundle extension, in any case of letters.
bool isPackageName(std::string_view name);

/// The subfolder for the outputs of such inputs: "AIFF" or "WAV".
std::string outputSubfolder(bool isAIFF);

/// The name of an output without a number.
std::string outputName(std::string_view inputName, bool isAIFF);

/// The first of "name.aif", "name (1).aif", "name (2).aif" … that `mayTake` agrees to.
std::string freeOutputName(std::string_view inputName, bool isAIFF,
                           const std::function<bool(const std::string& name)>& mayTake);

}  // namespace corvana
