// Format and encoding of a file in a few words.
#pragma once

#include <string>

#include "inspect/file_description.hpp"
#include "vocabulary/language.hpp"

namespace corvana {

/// "WAV, 24-bit PCM, stereo, 44100 Hz". No text of the file drives the screen.
std::string formatText(const FileDescription& file, const Language& language);

}  // namespace corvana
