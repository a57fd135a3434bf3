// Converts the files of one batch, several at a time where the options say so.
#pragma once

#include <string>
#include <vector>

#include "batch/audio_files.hpp"
#include "batch/batch_options.hpp"
#include "batch/log_entry.hpp"

namespace corvana {

/// What the system refused at a path, beside what the log says of it.
struct Refusal {
  std::string path;
  std::string reason;
};

/// Who is told how a batch gets on, on any of the threads that convert it.
class BatchListener {
 public:
  virtual ~BatchListener() = default;
  /// In the order of the files.
  virtual void fileBegun(const AudioFile& file) = 0;
  /// Of the first file that is not finished: ProgressHandler's fraction.
  virtual void progressMade(double fraction) = 0;
  /// In the order of the files.
  virtual void fileFinished(LogEntry entry, std::vector<Refusal> refusals) = 0;
  /// Whether no further file is to be begun, and those in work are to end after their current
  /// block. Once it is so, it stays.
  virtual bool isStopped() const = 0;
};

/// Names, outputs and what the listener is told are those of one file after the other, whatever
/// BatchOptions::jobs. Returns when every file is finished, or after a stop every file that was
/// begun.
void convertBatch(const std::vector<AudioFile>& files, const BatchOptions& options,
                  BatchListener& listener);

}  // namespace corvana
