// What the threads that convert the files of one batch know of each other.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "output/output_file.hpp"
#include "platform/queues.hpp"

namespace corvana {

/// The files of a batch that have been begun and not yet handed on, by their numbers in the order
/// in which they were begun. A file that has to do with the output of another one waits until that
/// is finished, and what is to be said of each is said in their order, so that it all looks as if
/// one thread had converted one file after the other. Any thread.
class FilesInWork {
 public:
  /// Begins the next file. Waits while too many finished ones wait for one before them, since what
  /// is to be said of them fills the memory.
  void begin();

  /// The file's output is being written from now on.
  void setOutput(std::uint64_t file, const OutputFile& output);

  /// Whether a file of this folder is being written that may have this name (foldedName).
  bool isWritten(const Folder& folder, const std::string& name) const;
  /// Whether this file is being written.
  bool isWritten(const FileIdentity& file) const;
  /// Whether nothing was begun before the file that is not finished.
  bool isFirst(std::uint64_t file) const;

  /// Waits until every file that was begun before this one is finished.
  void waitForEarlier(std::uint64_t file);

  /// Runs `task` as soon as those of all files that were begun before have run, on this thread or
  /// that of the file that was missing. Tasks run one at a time.
  void finish(std::uint64_t file, Task task);

 private:
  struct Output {
    InodeIdentity folder;
    InodeIdentity file;
    std::string foldedName;
  };
  struct Item {
    std::optional<Output> output;  ///< while it is written
    Task task;                     ///< once it is finished
  };

  template <typename Is>
  bool anyOutput(const Is& is) const;

  mutable std::mutex mutex_;
  std::condition_variable finished_;
  std::uint64_t begun_ = 0;
  std::map<std::uint64_t, Item> items_;  ///< the first is not finished, or is being handed on
  bool isHandingOn_ = false;             ///< some thread is
};

}  // namespace corvana
