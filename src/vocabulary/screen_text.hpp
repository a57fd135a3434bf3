// Texts on a screen: what a file name holds must neither drive a terminal nor pass for more.
#pragma once

#include <string>
#include <string_view>

namespace corvana {

/// `text` made fit for a screen: bytes that are not UTF-8 and control characters other than the
/// line feed become U+FFFD.
std::string readableText(std::string_view text);

}  // namespace corvana
