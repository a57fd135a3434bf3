// Texts in columns, for people.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace corvana {

/// What a line of Latin letters takes on a screen.
std::size_t columnsOf(std::string_view text);

/// With spaces behind it to so many columns.
std::string padded(const std::string& text, std::size_t columns);

/// The cells of a line.
using Row = std::vector<std::string>;

/// A cell that stands close between two numbers.
inline constexpr const char* dash = "–";

/// One line a row; cells that begin with a digit or a sign stand at the right of their column.
std::vector<std::string> aligned(const std::vector<Row>& rows);

}  // namespace corvana
