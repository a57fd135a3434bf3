// Texts on a screen: what a file name holds must neither drive a terminal nor pass for more.
#pragma once

#include <string>
#include <string_view>

namespace corvana {

/// `text` made fit for a screen. U+FFFD stands for bytes that are not UTF-8, for control characters
/// other than the line feed, and for characters that turn the direction of the text around them
/// or break lines. The marks that only give themselves a direction (U+200E, U+200F, U+061C) stay:
/// names of right-to-left scripts need them, and they do no more than a letter does.
std::string readableText(std::string_view text);

/// The same for a text of one line: U+FFFD stands for a line feed as well.
std::string readableLine(std::string_view text);

/// The same for the four characters of a chunk ID: "?" stands for all but those of ASCII.
std::string readableID(std::string id);

}  // namespace corvana
