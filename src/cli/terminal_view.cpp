#include "cli/terminal_view.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "platform/standard_streams.hpp"
#include "vocabulary/screen_text.hpp"

namespace corvana {
namespace {

constexpr std::chrono::milliseconds redrawInterval{50};
constexpr int barWidth = 24;
constexpr const char* eraseLine = "\r\x1b[K";

std::string progressBar(double fraction) {
  std::string bar(barWidth, '.');
  std::fill_n(bar.begin(), std::lround(fraction * barWidth), '#');
  std::array<char, 8> percent{};
  std::snprintf(percent.data(), percent.size(), "%3d", static_cast<int>(fraction * 100));
  return "[" + bar + "] " + percent.data() + " %  ";
}

}  // namespace

TerminalView::TerminalView(const TerminalOptions& options)
    : options_(options),
      logOnTerminal_(isTerminal(stdout)),
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
  if (logOnTerminal_) erase();
  const std::string text = (logOnTerminal_ ? entry.screenText() : entry.text()) + "\n";
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0)
    logIsComplete_ = false;
}

void TerminalView::reportLeftOut(const LeftOut& leftOut) {
  if (leftOut.mayHideFiles) searchIsComplete_ = false;
  reportReason(leftOut.path, leftOut.reason);
}

void TerminalView::reportReason(const std::string& path, const std::string& reason) {
  erase();
  std::fprintf(stderr, "corvana-cli: %s\n", readableLine(path + ": " + reason).c_str());
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
