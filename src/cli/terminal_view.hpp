// The batch driver's window in a terminal: the log on standard output, status and progress on
// standard error.
#pragma once

#include <chrono>
#include <string>

#include "batch/batch_driver.hpp"

namespace corvana {

/// The settings of one run.
struct TerminalOptions {
  BatchOptions batch;
  bool quiet = false;  ///< no status, no progress
  bool json = false;   ///< JSON in the place of the log's lines
};

class TerminalView : public BatchView {
 public:
  explicit TerminalView(const TerminalOptions& options);

  BatchOptions options() const override { return options_.batch; }
  void runStarted() override { hasFiles_ = true; }
  bool showsProgress() const override { return drawsProgress_; }
  void setStatus(const std::string& text) override;
  void setProgress(double fraction) override;
  void appendLog(const LogEntry& entry) override;
  void reportLeftOut(const LeftOut& leftOut) override;
  void reportReason(const std::string& path, const std::string& reason) override;

  /// Shows the last status for good.
  void finish();
  /// Takes status and progress off the terminal.
  void erase();

  /// Whether every entry of the log reached standard output.
  bool logIsComplete() const { return logIsComplete_; }
  /// Whether anything was found to convert.
  bool hasFiles() const { return hasFiles_; }
  /// Whether everything that was to be searched has been.
  bool searchIsComplete() const { return searchIsComplete_; }
  /// Whether a file has a warning: its output lacks something that the input has.
  bool hasLosses() const { return hasLosses_; }

 private:
  std::string logText(const LogEntry& entry) const;
  void report(const std::string& text);
  void draw();

  TerminalOptions options_;
  bool logOnTerminal_;
  bool logInColour_;
  bool drawsProgress_;
  bool isDrawn_ = false;
  bool logIsComplete_ = true;
  bool hasFiles_ = false;
  bool searchIsComplete_ = true;
  bool hasLosses_ = false;
  std::string status_;
  double progress_ = 0;
  std::chrono::steady_clock::time_point lastDrawn_;
};

}  // namespace corvana
