#include "cli/terminal_view.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "cli/json_lines.hpp"
#include "cli/report.hpp"
#include "platform/standard_streams.hpp"
#include "platform/texts.hpp"
#include "vocabulary/screen_text.hpp"

namespace corvana {
namespace {

constexpr std::chrono::milliseconds redrawInterval{50};
constexpr int barWidth = 24;
constexpr const char* eraseLine = "\r\x1b[K";
constexpr const char* red = "\x1b[31m";
constexpr const char* yellow = "\x1b[33m";
constexpr const char* plain = "\x1b[0m";

std::string progressBar(double fraction) {
  std::string bar(barWidth, '.');
  std::fill_n(bar.begin(), std::lround(fraction * barWidth), '#');
  std::array<char, 8> percent{};
  std::snprintf(percent.data(), percent.size(), "%3d", static_cast<int>(fraction * 100));
  return "[" + bar + "] " + percent.data() + " %  ";
}

bool wantsColour() {
  const auto value = [](const char* name) {
    const char* const text = std::getenv(name);
    return std::string_view(text == nullptr ? "" : text);
  };
  return value("NO_COLOR").empty() && !value("TERM").empty() && value("TERM") != "dumb";
}

/// The sign is the first word of the line.
std::string withSignIn(const char* colour, std::string line) {
  const std::size_t start = std::min(line.find_first_not_of(' '), line.size());
  line.insert(std::min(line.find(' ', start), line.size()), plain);
  return line.insert(start, colour);
}

}  // namespace

TerminalView::TerminalView(const TerminalOptions& options)
    : options_(options),
      logOnTerminal_(isTerminal(stdout)),
      logInColour_(logOnTerminal_ && wantsColour()),
      drawsProgress_(!options.quiet && isTerminal(stderr)) {}

void TerminalView::setStatus(const std::string& text) {
  status_ = text;
  draw();
}

void TerminalView::setProgress(double fraction) {
  progress_ = std::clamp(fraction, 0.0, 1.0);
  draw();
}

void TerminalView::appendLog(const LogEntry& entry) {
  if (entry.outcome == Outcome::skipped && !options_.json) return;
  if (!entry.warnings.empty()) hasLosses_ = true;
  if (options_.json && !entry.outcome) return report(entry.text());
  if (logOnTerminal_) erase();
  const std::string text =
      options_.json ? lineOf(jsonOf(entry, systemLanguage())) : logText(entry) + "\n";
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0)
    logIsComplete_ = false;
}

std::string TerminalView::logText(const LogEntry& entry) const {
  if (!logOnTerminal_) return entry.text();
  if (!logInColour_) return entry.screenText();
  std::string text;
  for (const std::string& line : entry.lines) {
    const bool isFirst = &line == &entry.lines.front();
    if (!isFirst) text += '\n';
    const char* const colour = !isFirst ? yellow : entry.outcome == Outcome::failed ? red : nullptr;
    text += colour == nullptr ? readableLine(line) : withSignIn(colour, readableLine(line));
  }
  return text;
}

void TerminalView::reportLeftOut(const LeftOut& leftOut) {
  if (leftOut.mayHideFiles) searchIsComplete_ = false;
  reportReason(leftOut.path, leftOut.reason);
}

void TerminalView::reportReason(const std::string& path, const std::string& reason) {
  report(path + ": " + reason);
}

void TerminalView::report(const std::string& text) {
  erase();
  corvana::report(text);
}

void TerminalView::finish() {
  erase();
  if (!options_.quiet && !status_.empty())
    std::fprintf(stderr, "%s\n", readableLine(status_).c_str());
}

void TerminalView::draw() {
  const auto now = std::chrono::steady_clock::now();
  if (!drawsProgress_ || now - lastDrawn_ < redrawInterval) return;
  lastDrawn_ = now;
  const std::string line = progressBar(progress_) + readableLine(status_);
  const std::string shown(firstColumns(line, terminalWidth(stderr) - 1));
  std::fprintf(stderr, "%s%s", eraseLine, shown.c_str());
  std::fflush(stderr);
  isDrawn_ = true;
}

void TerminalView::erase() {
  if (!isDrawn_) return;
  std::fputs(eraseLine, stderr);
  std::fflush(stderr);
  isDrawn_ = false;
}

}  // namespace corvana
