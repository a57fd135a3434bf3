#include "batch/batch_driver.hpp"

#include <cerrno>
#include <chrono>
#include <functional>
#include <optional>
#include <utility>

#include "batch/batch_inputs.hpp"
#include "convert/detect_format.hpp"
#include "convert/plan_aiff_to_wav.hpp"
#include "convert/plan_wav_to_aiff.hpp"
#include "output/convert_file.hpp"
#include "output/verify_output.hpp"
#include "platform/texts.hpp"
#include "verify/difference_texts.hpp"
#include "vocabulary/messages.hpp"
#include "vocabulary/screen_text.hpp"
#include "vocabulary/text_format.hpp"

namespace corvana {
namespace {

namespace fs = std::filesystem;

void setConverted(LogEntry& entry, const AudioFile& file, ConversionResult result) {
  entry.outcome = Outcome::converted;
  entry.lines = {std::string(file.name()) + " => " + result.outputURL.filename().native() + "  [" +
                 result.summary + "]"};
  for (const std::string& warning : result.warnings)
    entry.lines.push_back("   ⚠\uFE0E " + warning);
  entry.output = result.outputURL.native();
  entry.summary = result.figures;
  entry.frames = result.frames;
  entry.bytes = result.bytes;
  entry.warnings = std::move(result.warningRecords);
}

std::string failureLine(const AudioFile& file, const Failure& failure) {
  return "✗ " + std::string(file.name()) + ": " + failure.text;
}

void setFailed(LogEntry& entry, const AudioFile& file, Failure failure) {
  entry.outcome = Outcome::failed;
  entry.lines = {failureLine(file, failure)};
  entry.failure = std::move(failure);
}

void setFailed(LogEntry& entry, const AudioFile& file, const std::exception& error) {
  setFailed(entry, file, failureOf(error, systemLanguage()));
}

/// The output is not as its input promises. It stays, for somebody to look at.
void setDifferent(LogEntry& entry, const AudioFile& file, const OutputTarget& output,
                  const Differences& differences) {
  constexpr std::size_t maxShown = 10;
  entry.outcome = Outcome::failed;
  for (const Difference& difference : differences.kept) {
    const std::string text = differenceText(difference, systemLanguage());
    if (entry.lines.empty()) {
      entry.failure = {
          .code = "not-as-promised",
          .text = fillText(localised("'%1$@' is not as promised: %2$@"), {output.name, text})};
      entry.lines = {failureLine(file, entry.failure)};
    } else if (entry.lines.size() < maxShown) {
      entry.lines.push_back("   " + text);
    }
  }
  if (const std::uint64_t further = differences.count - entry.lines.size(); further > 0)
    entry.lines.push_back("   " + furtherDifferences(further, systemLanguage()));
}

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

/// The file, or what would be in its place by now where the batch is only rehearsed.
InputFile openInput(const Folder& folder, const AudioFile& file, const BatchNames& names) {
  const std::string name(file.name());
  if (auto replaced = names.outputs.openReplaced(folder, name, file.path()))
    return {std::move(*replaced), name, file.path()};
  return {folder, name, file.path(), names.options.accessTime()};
}

/// Why the system could not write.
int reasonOf(const ConversionError& writeFailed) {
  return static_cast<int>(std::get<std::int64_t>(writeFailed.values().at(1)));
}

/// Whether somebody else has made a file of the output's name since it was chosen.
bool isTakenMeanwhile(const ConversionError& error) {
  return error.kind() == ConversionError::Case::writeFailed && reasonOf(error) == EEXIST;
}

/// Whether the file is of the format that the others are to be converted into. One that cannot be
/// read is not: its error belongs in the log.
bool isLeftAlone(AudioFile& file, const BatchOptions& options) {
  try {
    const InputFile input(openFolderOf(file).folder(), std::string(file.name()), file.path(),
                          options.accessTime());
    if (options.preserveTimes) file.earlierTimes = std::make_shared<FileTimes>(input.times());
    return input.read(detectFormat) == (options.direction == Direction::toAIFF);
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

std::string LogEntry::text() const {
  return joinedLines(lines, std::identity());
}

std::string LogEntry::screenText() const {
  return joinedLines(lines, readableLine);
}

BatchDriver::BatchDriver(BatchView& view, MainQueue& mainQueue)
    : view_(view), mainQueue_(mainQueue), workQueue_("corvana.convert") {}

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
    workQueue_.async([this, batch] { mainQueue_.post([this, batch] { start(batch); }); });
    return;
  }
  if (totalFiles_ == 0) {
    ++run_;
    skippedFiles_ = 0;
    view_.runStarted();
  }
  batch.run = run_;
  totalFiles_ += static_cast<std::int64_t>(batch.files->size());
  view_.setProgress(static_cast<double>(finishedFiles_) / static_cast<double>(totalFiles_));
  workQueue_.async([this, batch] { convertFiles(batch); });

  // The work goes on while this is found out.
  const bool isKnown = batch.options.overwrite && !batch.options.useSubfolder;
  constexpr bool besideInputs = false;
  const NameClashes pairs = isKnown ? NameClashes() : findNameClashes(*batch.files, besideInputs);
  if (pairs.count > 0) view_.reportCounterparts(pairs.count);
}

void BatchDriver::convertFiles(const Batch& batch) {
  const BatchOptions& options = batch.options;
  const bool sparesInputs = options.overwrite && options.clash != InputClash::replace;
  static const std::vector<AudioFile> none;
  BatchNames names{options, BatchInputs(sparesInputs ? *batch.files : none)};
  std::optional<InputFolder> folder;
  for (const AudioFile& file : *batch.files) {
    if (isStopped(batch)) break;
    mainQueue_.post(
        [this, status = fillText(localised("Converting %@ …"), {std::string(file.name())})] {
          view_.setStatus(status);
        });
    LogEntry entry{.lines = {}, .input = file.path()};
    const auto begun = std::chrono::steady_clock::now();
    try {
      if (!folder || !folder->isOf(file)) folder = openFolderOf(file);
      convertFile(*folder, file, batch, names, entry);
    } catch (const ConversionError& error) {
      if (error.kind() == ConversionError::Case::writeFailed)
        reportReason(std::get<std::string>(error.values().at(0)),
                     std::generic_category().message(reasonOf(error)));
      setFailed(entry, file, error);
    } catch (const InputClashError& error) {
      setFailed(entry, file, {"input-clash", {error.name()}, error.what()});
    } catch (const std::exception& error) {
      setFailed(entry, file, error);
    }
    entry.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count();
    mainQueue_.post([this, entry = std::move(entry)] { fileFinished(entry); });
  }
  if (isStopped(batch)) mainQueue_.post([this, run = batch.run] { runStopped(run); });
}

void BatchDriver::convertFile(InputFolder& folder, const AudioFile& file, const Batch& batch,
                              BatchNames& names, LogEntry& entry) {
  const BatchOptions& options = batch.options;
  const InputFile input = openInput(folder.folder(), file, names);
  const bool isAIFF = input.read(detectFormat);
  entry.direction = isAIFF ? Direction::toWAV : Direction::toAIFF;
  const auto place = [&] { return folder.outputPlace(file, isAIFF, options); };
  if (options.skipExisting) {
    if (const auto current = currentOutput(place(), input, isAIFF, names)) {
      entry.outcome = Outcome::skipped;
      entry.output = current->native();
      return;
    }
  }
  for (std::string triedName;;) {
    OutputTarget output = makeOutputURL(folder, place(), input, isAIFF, names);
    if (options.preserveTimes)
      output.times = file.earlierTimes ? *file.earlierTimes : input.times();
    if (options.dryRun) {
      ConversionPlan plan = input.read(isAIFF ? planAIFFToWAV : planWAVToAIFF);
      names.outputs.rehearse(output, plan);
      return setConverted(entry, file, resultOf(std::move(plan), output));
    }
    try {
      convertInto(output, input, isAIFF, batch, file, entry);
      if (options.skipExisting) names.outputs.add(place(), output.name);
      return;
    } catch (const ConversionError& error) {
      if (!isTakenMeanwhile(error) || options.overwrite || output.name == triedName) throw;
      triedName = output.name;
    }
  }
}

void BatchDriver::convertInto(const OutputTarget& output, const InputFile& input, bool isAIFF,
                              const Batch& batch, const AudioFile& file, LogEntry& entry) {
  const ProgressHandler progress = [&](double fraction) {
    // A file whose samples are all written is finished rather than left without its end.
    if (isStopped(batch) && fraction < 1.0)
      throw FileError(ECANCELED,
                      batch.options.safe ? localised("Stopped – '%1$@' is not made.")
                                         : localised("Stopped – '%1$@' is incomplete."),
                      output.url());
    reportProgress(fraction);
  };
  ConversionResult result = isAIFF ? convertAIFFToWAV(input, output, progress)
                                   : convertWAVToAIFF(input, output, progress);
  reportTimes(output, result.timesError);
  if (batch.options.verify) {
    const OutputProof proof = verifyOutput(input, output, [&](double) {
      if (isStopped(batch))
        throw FileError(ECANCELED, localised("Stopped – '%1$@' is not verified."), output.url());
    });
    if (result.timesError == 0) reportTimes(output, proof.timesError);
    if (proof.differences.areThere()) return setDifferent(entry, file, output, proof.differences);
  }
  setConverted(entry, file, std::move(result));
}

void BatchDriver::reportTimes(const OutputTarget& output, int errorNumber) {
  if (errorNumber == 0) return;
  reportReason(output.url().native(),
               fillText(localised("It has not got the times of its input: %@"),
                        {std::generic_category().message(errorNumber)}));
}

void BatchDriver::reportReason(const std::string& path, const std::string& reason) {
  mainQueue_.post([this, path, reason] { view_.reportReason(path, reason); });
}

void BatchDriver::reportProgress(double fraction) {
  mainQueue_.post([this, fraction] {
    if (totalFiles_ >= 1)
      view_.setProgress((fraction + static_cast<double>(finishedFiles_)) /
                        static_cast<double>(totalFiles_));
  });
}

void BatchDriver::fileFinished(const LogEntry& entry) {
  ++finishedFiles_;
  if (entry.outcome == Outcome::failed) ++failedFiles_;
  if (entry.outcome == Outcome::skipped) ++skippedFiles_;
  view_.appendLog(entry);
  if (totalFiles_ >= 1)
    view_.setProgress(static_cast<double>(finishedFiles_) / static_cast<double>(totalFiles_));
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
