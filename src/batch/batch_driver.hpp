// Converts lists of files and folders on a work queue and keeps its window (or terminal) up to
// date: log, status line, progress.
#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "batch/audio_files.hpp"
#include "batch/batch_inputs.hpp"
#include "batch/batch_options.hpp"
#include "batch/log_entry.hpp"
#include "platform/ending.hpp"
#include "platform/queues.hpp"

namespace corvana {

/// What the driver needs of a window. Everything is called on the main thread, or what the main
/// queue takes for it: one call at a time.
class BatchView {
 public:
  virtual ~BatchView() = default;
  virtual BatchOptions options() const = 0;
  /// The first file of a run is queued; it ends with the last one of all batches queued by then.
  virtual void runStarted() {}
  /// Whether a person sees how a batch gets on. Asked at its start; if not, neither a status nor
  /// the progress of the current file comes before the last one.
  virtual bool showsProgress() const { return true; }
  virtual void setStatus(const std::string& text) = 0;
  virtual void setProgress(double fraction) = 0;  ///< 0.0 to 1.0
  virtual void appendLog(const LogEntry& entry) = 0;
  /// Something that no entry of the log will speak of.
  virtual void reportLeftOut(const LeftOut&) {}
  /// What the system refused at an output: why it cannot be written, where the log names the file
  /// only, or why it has not got the times of its input.
  virtual void reportReason(const std::string& /*path*/, const std::string& /*reason*/) {}
  /// A batch of these files has started.
  virtual void batchStarted(const std::vector<AudioFile>& /*files*/, const BatchOptions&) {}
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
  /// `view` and `mainQueue` outlive the driver. Each batch is a task of the work queue.
  BatchDriver(BatchView& view, MainQueue& mainQueue, std::unique_ptr<TaskQueue> workQueue);
  /// Stops first.
  ~BatchDriver();

  /// The one entry of a batch: expands files and folders and queues their conversion with the
  /// option states of this moment.
  void processURLs(const std::vector<std::filesystem::path>& urls);

  /// No further file is started, and those being converted end after their current block as failed
  /// files. For good: files given later are not converted either. A signal that asks the
  /// program to end (catchInterrupts) does the same. Any thread.
  void stop() { stopped_ = true; }

  /// The same for the files of the present run, which then ends with a status that says so. Files
  /// given from now on are converted in a run of their own.
  void stopRun() { stoppedRun_ = run_; }
  /// Whether the present run has been stopped and has not ended yet.
  bool isStoppingRun() const { return totalFiles_ > 0 && stoppedRun_ == run_; }

  /// Files accepted, and files finished, since the last run ended; both 0 between runs.
  std::int64_t totalFiles() const { return totalFiles_; }
  std::int64_t finishedFiles() const { return finishedFiles_; }
  /// Files that could not be converted since the start.
  std::int64_t failedFiles() const { return failedFiles_; }

 private:
  using Files = std::shared_ptr<const std::vector<AudioFile>>;

  struct Batch {
    Files files;
    BatchOptions options;
    std::int64_t run = 0;
    bool showsProgress = true;
  };

  void start(Batch batch);

  class Listener;

  // On the work queue and the threads of its task.
  bool endsAtOnce() const { return stopped_ || interruptStatus() != 0; }
  bool isStopped(const Batch& batch) const { return endsAtOnce() || batch.run <= stoppedRun_; }
  void convertFiles(const Batch& batch);

  /// `fraction` of the current file is done.
  void showProgress(double fraction);
  void fileFinished(const LogEntry& entry);
  std::string finalStatus() const;
  void runStopped(std::int64_t run);

  BatchView& view_;
  MainQueue& mainQueue_;
  std::int64_t totalFiles_ = 0;
  std::int64_t finishedFiles_ = 0;
  std::int64_t failedFiles_ = 0;
  std::int64_t skippedFiles_ = 0;  ///< of the present run
  std::int64_t run_ = 0;           ///< number of the present or last run
  std::atomic<bool> stopped_ = false;
  std::atomic<std::int64_t> stoppedRun_ = 0;  ///< this one and those before it
  std::unique_ptr<TaskQueue> workQueue_;      // last: its thread ends before the rest does
};

}  // namespace corvana
