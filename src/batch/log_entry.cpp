#include "batch/log_entry.hpp"

#include <functional>

#include "vocabulary/screen_text.hpp"

namespace corvana {
namespace {

/// The lines with a line feed between them, each as `shown` gives it.
template <typename Shown>
std::string joinedLines(const std::vector<std::string>& lines, Shown shown) {
  std::string text;
  for (const std::string& line : lines) {
    if (!text.empty()) text += '\n';
    text += shown(line);
  }
  return text;
}

}  // namespace

std::string LogEntry::text() const {
  return joinedLines(lines, std::identity());
}

std::string LogEntry::screenText() const {
  return joinedLines(lines, readableLine);
}

}  // namespace corvana
