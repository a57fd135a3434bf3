// The batch driver's window in a terminal: the log on standard output, status and progress on
// standard error.
#pragma once

#include <chrono>
#include <string>

#include "batch/batch_driver.hpp"

namespace corvana {

/// The settings of one run.
struct TerminalOptions {
  bool useSubfolder = false;
  bool overwriteExisting = false;
  bool quiet = false;  ///< no status, no progress
};

class TerminalView : public BatchView {
 public:
  explicit TerminalView(const TerminalOptions& options);

  bool useSubfolder() const override { return options_.useSubfolder; }
  bool overwriteExisting() const override { return options_.overwriteExisting; }
  void setStatus(const std::string& text) override;
  void setProgress(double fraction) override;
  void appendLog(const LogEntry& entry) override;

  /// Shows the last status for good.
  void finish();
  /// Takes status and progress off the terminal.
  void erase();

  /// Whether every entry of the log reached standard output.
  bool logIsComplete() const { return logIsComplete_; }

 private:
  void draw();

  TerminalOptions options_;
  bool logOnTerminal_;
  bool drawsProgress_;
  bool isDrawn_ = false;
  bool logIsComplete_ = true;
  std::string status_;
  double progress_ = 0;
  std::chrono::steady_clock::time_point lastDrawn_;
};

}  // namespace corvana
