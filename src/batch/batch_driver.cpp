#include "batch/batch_driver.hpp"

#include <utility>

#include "batch/convert_batch.hpp"
#include "batch/output_url.hpp"
#include "convert/detect_format.hpp"
#include "platform/texts.hpp"
#include "vocabulary/text_format.hpp"

namespace corvana {
namespace {

namespace fs = std::filesystem;

/// Whether the file is of the format that the others are to be converted into. One that cannot be
/// read is not: its error belongs in the log.
bool isLeftAlone(AudioFile& file, const BatchOptions& options) {
  try {
    const InputFile input(openFolderOf(file).folder(), std::string(file.name()), file.path(),
                          options.accessTime());
    if (options.preserveTimes) file.earlierTimes = std::make_shared<FileTimes>(input.times());
    const bool anyEncoding = options.conversion.anyEncoding;
    return input.read([&](ByteView content) { return detectFormat(content, anyEncoding); }) ==
           (options.direction == Direction::toAIFF);
  } catch (const std::exception&) {
    return false;
  }
}

/// What is left of `files` where only some are to be converted.
std::vector<AudioFile> chosenFiles(std::vector<AudioFile> files, const BatchOptions& options) {
  if (options.direction == Direction::both) return files;
  std::vector<AudioFile> chosen;
  for (AudioFile& file : files)
    if (!isLeftAlone(file, options)) chosen.push_back(std::move(file));
  return chosen;
}

}  // namespace

/// Hands on to the main queue how a batch gets on.
class BatchDriver::Listener : public BatchListener {
 public:
  Listener(BatchDriver& driver, const Batch& batch) : driver_(driver), batch_(batch) {}

  void fileBegun(const AudioFile& file) override {
    if (!batch_.showsProgress) return;
    driver_.mainQueue_.post([&driver = driver_, status = fillText(localised("Converting %@ …"),
                                                                  {std::string(file.name())})] {
      driver.view_.setStatus(status);
    });
  }
  void progressMade(double fraction) override {
    if (!batch_.showsProgress) return;
    driver_.mainQueue_.post([&driver = driver_, fraction] { driver.showProgress(fraction); });
  }
  void fileFinished(LogEntry entry, std::vector<Refusal> refusals) override {
    driver_.mainQueue_.post(
        [&driver = driver_, entry = std::move(entry), refusals = std::move(refusals)] {
          for (const Refusal& refusal : refusals)
            driver.view_.reportReason(refusal.path, refusal.reason);
          driver.fileFinished(entry);
        });
  }
  bool isStopped() const override { return driver_.isStopped(batch_); }

 private:
  BatchDriver& driver_;
  const Batch& batch_;
};

BatchDriver::BatchDriver(BatchView& view, MainQueue& mainQueue,
                         std::unique_ptr<TaskQueue> workQueue)
    : view_(view), mainQueue_(mainQueue), workQueue_(std::move(workQueue)) {}

BatchDriver::~BatchDriver() {
  stop();
}

void BatchDriver::processURLs(const std::vector<fs::path>& urls) {
  const BatchOptions options = view_.options();
  FoundFiles found = collectAudioFiles(urls, options.outputFolder);
  for (const LeftOut& leftOut : found.leftOut)
    view_.reportLeftOut(leftOut);
  found.files = chosenFiles(std::move(found.files), options);
  if (found.files.empty()) {
    view_.appendLog({{localised("No WAV or AIFF files found.")}});
    return;
  }
  const Files files = std::make_shared<const std::vector<AudioFile>>(std::move(found.files));
  if (options.overwrite) {
    const NameClashes clashes = findNameClashes(*files, options.useSubfolder);
    if (clashes.count > 0)
      return view_.confirmReplacingInputs(clashes.first, [this, files, options](InputClash answer) {
        BatchOptions confirmed = options;
        confirmed.clash = answer;
        start({files, confirmed});
      });
  }
  start({files, options});
}

void BatchDriver::start(Batch batch) {
  if (isStoppingRun()) {
    // Later: what the work queue posts of the stopped run comes before this.
    workQueue_->post([this, batch] { mainQueue_.post([this, batch] { start(batch); }); });
    return;
  }
  if (totalFiles_ == 0) {
    ++run_;
    skippedFiles_ = 0;
    view_.runStarted();
  }
  batch.run = run_;
  batch.showsProgress = view_.showsProgress();
  totalFiles_ += static_cast<std::int64_t>(batch.files->size());
  view_.setProgress(static_cast<double>(finishedFiles_) / static_cast<double>(totalFiles_));
  workQueue_->post([this, batch] { convertFiles(batch); });
  view_.batchStarted(*batch.files, batch.options);  // the work goes on while this is done
}

void BatchDriver::convertFiles(const Batch& batch) {
  Listener listener(*this, batch);
  convertBatch(*batch.files, batch.options, listener);
  if (isStopped(batch)) mainQueue_.post([this, run = batch.run] { runStopped(run); });
}

void BatchDriver::showProgress(double fraction) {
  if (totalFiles_ >= 1)
    view_.setProgress((fraction + static_cast<double>(finishedFiles_)) /
                      static_cast<double>(totalFiles_));
}

void BatchDriver::fileFinished(const LogEntry& entry) {
  ++finishedFiles_;
  if (entry.outcome == Outcome::failed) ++failedFiles_;
  if (entry.outcome == Outcome::skipped) ++skippedFiles_;
  view_.appendLog(entry);
  showProgress(0);
  if (finishedFiles_ < totalFiles_) return;
  if (isStoppingRun() && entry.outcome == Outcome::failed) return runStopped(run_);
  view_.setStatus(finalStatus());
  view_.setProgress(1.0);
  totalFiles_ = 0;
  finishedFiles_ = 0;
}

std::string BatchDriver::finalStatus() const {
  const std::int64_t count = finishedFiles_ - skippedFiles_;
  std::string status =
      view_.options().dryRun
          ? localisedCount("Dry run – %ld file would be processed.",
                           "Dry run – %ld files would be processed.", count)
          : localisedCount("Done – %ld file processed.", "Done – %ld files processed.", count);
  if (skippedFiles_ > 0)
    status += ' ' + localisedCount("%ld file skipped.", "%ld files skipped.", skippedFiles_);
  return status;
}

void BatchDriver::runStopped(std::int64_t run) {
  // The first of its batches to say so has ended it, or its last file has.
  if (run != run_ || totalFiles_ == 0) return;
  if (!endsAtOnce())
    view_.setStatus(fillText(localisedCount("Stopped – %@ of %ld file processed.",
                                            "Stopped – %@ of %ld files processed.", totalFiles_),
                             {groupedText(finishedFiles_)}));
  totalFiles_ = 0;
  finishedFiles_ = 0;
}

}  // namespace corvana
