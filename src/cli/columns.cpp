#include "cli/columns.hpp"

#include <algorithm>

namespace corvana {
namespace {

/// What `text` lacks of so many columns.
std::string space(const std::string& text, std::size_t columns) {
  return std::string(columns - std::min(columns, columnsOf(text)), ' ');
}

}  // namespace

std::size_t columnsOf(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

std::string padded(const std::string& text, std::size_t columns) {
  return text + space(text, columns);
}

std::vector<std::string> aligned(const std::vector<Row>& rows) {
  std::vector<std::size_t> widths;
  for (const Row& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i + 1 < row.size(); ++i)
      widths[i] = std::max(widths[i], columnsOf(row[i]));
  }
  std::vector<std::string> lines;
  for (const Row& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      const bool isLast = i + 1 == row.size();
      const bool isNumber = !row[i].empty() && row[i][0] >= '+' && row[i][0] <= '9';
      if (i != 0) line += row[i] == dash || row[i - 1] == dash ? " " : "  ";
      const std::string gap = isLast ? "" : space(row[i], widths[i]);
      line += isNumber ? gap + row[i] : row[i] + gap;
    }
    line.resize(line.find_last_not_of(' ') + 1);
    lines.push_back(line);
  }
  return lines;
}

}  // namespace corvana
