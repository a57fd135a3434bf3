// Converts lists of files and folders one after another on a work queue and keeps its window
// (or terminal) up to date: log, status line, progress.
#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "batch/audio_files.hpp"
#include "batch/batch_options.hpp"
#include "batch/output_url.hpp"
#include "platform/ending.hpp"
#include "platform/queues.hpp"
#include "vocabulary/errors.hpp"

namespace corvana {

/// What became of a file.
enum class Outcome { converted, failed };

/// What the log says of one finished file, or of a batch without files. A line holds the names and
/// texts of files as they are, line feeds included.
struct LogEntry {
  std::vector<std::string> lines;       ///< what became of the file; then one for each warning
  std::optional<Outcome> outcome = {};  ///< none for a batch without files
  std::string input = {};               ///< path, as given or found
  std::string output = {};              ///< path of the file that was written; empty where failed

  /// The exact bytes, for programs. A line feed is to follow.
  std::string text() const;
  /// For people: no name drives the screen or passes for a further line. A line feed is to follow.
  std::string screenText() const;
};

/// What the driver needs of a window. Everything is called on the main thread.
class BatchView {
 public:
  virtual ~BatchView() = default;
  virtual BatchOptions options() const = 0;
  /// The first file of a run is queued; it ends with the last one of all batches queued by then.
  virtual void runStarted() {}
  virtual void setStatus(const std::string& text) = 0;
  virtual void setProgress(double fraction) = 0;  ///< 0.0 to 1.0
  virtual void appendLog(const LogEntry& entry) = 0;
  /// Something that no entry of the log will speak of.
  virtual void reportLeftOut(const LeftOut&) {}
  /// Why the system could not write an output; the log names the file only.
  virtual void reportReason(const std::string& /*path*/, const std::string& /*reason*/) {}
  /// Inputs of a batch would be replaced by the outputs of others, such as `example`. `answer` says
  /// what is to become of them and starts the batch, at once or later; without it, nothing starts.
  virtual void confirmReplacingInputs(const NameClash& /*example*/,
                                      const std::function<void(InputClash)>& answer) {
    answer(options().clash);
  }
};

/// Everything runs on the main thread unless said otherwise.
class BatchDriver {
 public:
  /// `view` and `mainQueue` outlive the driver.
  BatchDriver(BatchView& view, MainQueue& mainQueue);
  /// Stops first.
  ~BatchDriver();

  /// The one entry of a batch: expands files and folders and queues their conversion with the
  /// option states of this moment.
  void processURLs(const std::vector<std::filesystem::path>& urls);

  /// No further file is started, and the one being converted ends after its current block as a
  /// failed file. For good: files given later are not converted either. A signal that asks the
  /// program to end (catchInterrupts) does the same. Any thread.
  void stop() { stopped_ = true; }

  /// Files accepted, and files finished, since the last run ended; both 0 between runs.
  std::int64_t totalFiles() const { return totalFiles_; }
  std::int64_t finishedFiles() const { return finishedFiles_; }
  /// Files that could not be converted since the start.
  std::int64_t failedFiles() const { return failedFiles_; }

 private:
  using Files = std::shared_ptr<const std::vector<AudioFile>>;

  void start(const Files& files, const BatchOptions& options);

  // On the work queue.
  bool isStopped() const { return stopped_ || interruptStatus() != 0; }
  void convertFiles(const std::vector<AudioFile>& files, const BatchOptions& options);
  LogEntry convertFile(InputFolder& folder, const AudioFile& file, const BatchOptions& options,
                       const BatchInputs& inputs);
  void reportProgress(double fraction);
  void reportReason(const ConversionError& error);

  void fileFinished(const LogEntry& entry);

  BatchView& view_;
  MainQueue& mainQueue_;
  std::int64_t totalFiles_ = 0;
  std::int64_t finishedFiles_ = 0;
  std::int64_t failedFiles_ = 0;
  std::atomic<bool> stopped_ = false;
  SerialQueue workQueue_;  // last: its thread ends before the rest does
};

}  // namespace corvana
