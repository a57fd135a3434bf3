#include "batch/convert_batch.hpp"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <memory>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include "batch/files_in_work.hpp"
#include "batch/output_url.hpp"
#include "batch/turns.hpp"
#include "convert/detect_format.hpp"
#include "convert/plan_aiff_to_wav.hpp"
#include "convert/plan_wav_to_aiff.hpp"
#include "output/convert_file.hpp"
#include "output/verify_output.hpp"
#include "platform/ending.hpp"
#include "platform/texts.hpp"
#include "verify/difference_texts.hpp"
#include "vocabulary/errors.hpp"
#include "vocabulary/file_names.hpp"
#include "vocabulary/text_format.hpp"

namespace corvana {
namespace {

/// Most files that are converted at the same time.
constexpr unsigned maxJobs = 256;

void setConverted(LogEntry& entry, const AudioFile& file, ConversionResult result) {
  entry.outcome = Outcome::converted;
  entry.lines = convertedLines(file.name(), result.outputURL.filename().native(), result.summary,
                               result.warnings);
  entry.output = result.outputURL.native();
  entry.summary = result.figures;
  entry.frames = result.frames;
  entry.bytes = result.bytes;
  entry.warnings = std::move(result.warningRecords);
  entry.leftOut = std::move(result.leftOut);
}

/// The log of a dry run, and of conversions with options, names the chunks that are left out,
/// unless a warning does.
void addLeftOut(LogEntry& entry, const BatchOptions& options) {
  const bool isOrdinary = options.conversion == ConversionOptions() && !options.rootKeysByMiddleC;
  if (isOrdinary && !options.dryRun) return;
  if (!entry.leftOut.empty() && !nameLeftOut(entry.warnings))
    entry.lines.push_back("   " + leftOutText(entry.leftOut, systemLanguage()));
}

void setFailed(LogEntry& entry, const AudioFile& file, Failure failure) {
  entry.outcome = Outcome::failed;
  entry.lines = {failureLine(file.name(), failure.text)};
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
      entry.lines = {failureLine(file.name(), entry.failure.text)};
    } else if (entry.lines.size() < maxShown) {
      entry.lines.push_back("   " + text);
    }
  }
  if (const std::uint64_t further = differences.count - entry.lines.size(); further > 0)
    entry.lines.push_back("   " + furtherDifferences(further, systemLanguage()));
}

/// Why the system could not write.
int reasonOf(const ConversionError& writeFailed) {
  return static_cast<int>(std::get<std::int64_t>(writeFailed.values().at(1)));
}

/// Whether somebody else has made a file of the output's name since it was chosen.
bool isTakenMeanwhile(const ConversionError& error) {
  return error.kind() == ConversionError::Case::writeFailed && reasonOf(error) == EEXIST;
}

/// So many files are to be converted at the same time.
std::size_t jobsOf(const std::vector<AudioFile>& files, const BatchOptions& options) {
  // Where outputs take the place of inputs, what a file holds depends on the files before it; a
  // rehearsal writes nothing that could be done beside it.
  const bool replacesInputs = options.overwrite && options.clash == InputClash::replace;
  if (options.dryRun || replacesInputs) return 1;
  const unsigned jobs = options.jobs > 0 ? options.jobs : std::thread::hardware_concurrency();
  return std::min<std::size_t>(std::clamp(jobs, 1U, maxJobs), files.size());
}

const std::vector<AudioFile>& filesToSpare(const std::vector<AudioFile>& files,
                                           const BatchOptions& options) {
  static const std::vector<AudioFile> none;
  return options.overwrite && options.clash != InputClash::replace ? files : none;
}

/// That the work takes.
template <typename Work>
double secondsOf(const Work& work) {
  const auto begun = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count();
}

/// One batch, in the hands of one or several threads.
class BatchConversion {
 public:
  BatchConversion(const std::vector<AudioFile>& files, const BatchOptions& options,
                  BatchListener& listener)
      : files_(files),
        listener_(listener),
        jobs_(jobsOf(files, options)),
        names_{options, BatchInputs(filesToSpare(files, options))} {}

  /// Converts with as many threads as there are jobs, this one among them.
  void run();

 private:
  /// A file that a thread is in charge of.
  struct Current {
    const AudioFile& file;
    std::uint64_t number;
    bool hasTurn = true;  ///< until the output is there
    LogEntry entry = {};
    std::vector<Refusal> refusals = {};
  };
  /// An input, as far as it has been read.
  struct Input {
    std::unique_ptr<const InputFile> file = {};
    bool isAIFF = false;
    std::optional<ConversionPlan> plan = {};
  };
  /// What a thread keeps from one file to the next.
  struct Kept {
    std::optional<InputFolder> folder = {};
    Input early = {};  ///< opened before its turn; the file may be null
  };

  void convertNextFiles();
  void openEarly(const AudioFile& file, Kept& kept);
  void convertLogging(Current& current, Kept& kept);
  void convert(InputFolder& folder, Input& input, Current& current);
  void convertInto(const OutputTarget& output, Input& input, Current& current);
  static const Folder& folderOf(const AudioFile& file, Kept& kept);
  std::unique_ptr<const InputFile> open(const AudioFile& file, const Folder& folder) const;
  Input openInput(const Current& current, Kept& kept);
  ConversionOptions optionsFor(const AudioFile& file) const;
  bool isAIFF(const InputFile& file) const;
  ConversionPlan planOf(const Input& input, const AudioFile& file) const;
  bool isSettled(Input& input, const Current& current, const Folder& folder);
  void endTurn(Current& current);

  const std::vector<AudioFile>& files_;
  BatchListener& listener_;
  const std::size_t jobs_;
  BatchNames names_;
  FilesInWork inWork_;
  std::atomic<std::uint64_t> taken_ = 0;  ///< files that have been given to a thread
  /// Of each file from its beginning until its output is there: the next file finds the names as if
  /// all before it were finished.
  Turns turns_{jobs_};
};

void BatchConversion::run() {
  const auto convert = [this] { doOrEnd([this] { convertNextFiles(); }); };
  std::vector<std::thread> others;
  try {
    while (others.size() + 1 < jobs_)
      others.emplace_back(convert);
  } catch (const std::system_error&) {
    // The system has no more threads; those that there are do the work.
  }
  convert();
  for (std::thread& other : others)
    other.join();
}

void BatchConversion::convertNextFiles() {
  for (Kept kept;;) {
    const std::uint64_t number = taken_++;
    if (number >= files_.size()) return;
    Current current{files_[static_cast<std::size_t>(number)], number};
    current.entry.seconds = jobs_ > 1 ? secondsOf([&] { openEarly(current.file, kept); }) : 0;
    if (!turns_.begin(number)) return;
    if (listener_.isStopped()) return turns_.close();
    inWork_.begin();
    listener_.fileBegun(current.file);
    current.entry.input = current.file.path();
    current.entry.seconds += secondsOf([&] { convertLogging(current, kept); });
    endTurn(current);
    inWork_.finish(number, [this, entry = std::move(current.entry),
                            refusals = std::move(current.refusals)]() mutable {
      listener_.fileFinished(std::move(entry), std::move(refusals));
    });
  }
}

void BatchConversion::endTurn(Current& current) {
  if (std::exchange(current.hasTurn, false)) turns_.end();
}

void BatchConversion::convertLogging(Current& current, Kept& kept) {
  const AudioFile& file = current.file;
  try {
    Input input = openInput(current, kept);
    convert(*kept.folder, input, current);
  } catch (const ConversionError& error) {
    if (error.kind() == ConversionError::Case::writeFailed)
      current.refusals.push_back({std::get<std::string>(error.values().at(0)),
                                  std::generic_category().message(reasonOf(error))});
    setFailed(current.entry, file, error);
  } catch (const InputClashError& error) {
    setFailed(current.entry, file, {"input-clash", {error.name()}, error.what()});
  } catch (const std::exception& error) {
    setFailed(current.entry, file, error);
  }
}

void BatchConversion::convert(InputFolder& folder, Input& input, Current& current) {
  const BatchOptions& options = names_.options;
  const InputFile& file = *input.file;
  const bool isAIFF = input.isAIFF;
  current.entry.direction = isAIFF ? Direction::toWAV : Direction::toAIFF;
  const auto place = [&] { return folder.outputPlace(current.file, isAIFF, options); };
  if (options.skipExisting) {
    if (inWork_.isWritten(place().folder, outputName(current.file.name(), isAIFF)))
      inWork_.waitForEarlier(current.number);
    if (const auto existing = currentOutput(place(), file, isAIFF, names_)) {
      current.entry.outcome = Outcome::skipped;
      current.entry.output = existing->native();
      return;
    }
  }
  for (std::string triedName;;) {
    OutputTarget output = makeOutputURL(folder, place(), file, isAIFF, names_);
    if (current.hasTurn && inWork_.isWritten(output.folder, output.name)) {
      inWork_.waitForEarlier(current.number);
      continue;
    }
    if (options.preserveTimes)
      output.times = current.file.earlierTimes ? *current.file.earlierTimes : file.times();
    if (options.dryRun) {
      ConversionPlan plan = planOf(input, current.file);
      names_.outputs.rehearse(output, plan);
      setConverted(current.entry, current.file, resultOf(std::move(plan), output));
      return addLeftOut(current.entry, options);
    }
    try {
      convertInto(output, input, current);
      if (options.skipExisting) names_.outputs.add(place(), output.name);
      return;
    } catch (const ConversionError& error) {
      if (!isTakenMeanwhile(error) || options.overwrite || output.name == triedName) throw;
      triedName = output.name;
    }
  }
}

const Folder& BatchConversion::folderOf(const AudioFile& file, Kept& kept) {
  if (!kept.folder || !kept.folder->isOf(file)) kept.folder = openFolderOf(file);
  return kept.folder->folder();
}

std::unique_ptr<const InputFile> BatchConversion::open(const AudioFile& file,
                                                       const Folder& folder) const {
  return std::make_unique<const InputFile>(folder, std::string(file.name()), file.path(),
                                           names_.options.accessTime());
}

ConversionOptions BatchConversion::optionsFor(const AudioFile& file) const {
  const BatchOptions& options = names_.options;
  return optionsForFile(options.conversion, options.rootKeysByMiddleC, file.name());
}

bool BatchConversion::isAIFF(const InputFile& file) const {
  const bool anyEncoding = names_.options.conversion.anyEncoding;
  return file.read([&](ByteView content) { return detectFormat(content, anyEncoding); });
}

ConversionPlan BatchConversion::planOf(const Input& input, const AudioFile& file) const {
  const auto plan = input.isAIFF ? planAIFFToWAV : planWAVToAIFF;
  return input.file->read([&](ByteView content) { return plan(content, optionsFor(file)); });
}

/// Makes use of the time until the file's turn. What fails is tried again then.
void BatchConversion::openEarly(const AudioFile& file, Kept& kept) {
  kept.early = {};
  try {
    Input input{open(file, folderOf(file, kept))};
    input.isAIFF = isAIFF(*input.file);
    if (!names_.options.skipExisting) input.plan = planOf(input, file);
    kept.early = std::move(input);
  } catch (const std::exception&) {
    return;
  }
}

/// The file, or what would be in its place by now where the batch is only rehearsed.
BatchConversion::Input BatchConversion::openInput(const Current& current, Kept& kept) {
  const AudioFile& file = current.file;
  const Folder& folder = folderOf(file, kept);
  const std::string name(file.name());
  Input input = std::move(kept.early);
  if (auto replaced = names_.outputs.openReplaced(folder, name, file.path())) {
    input.file = std::make_unique<const InputFile>(std::move(*replaced), name, file.path());
  } else if (!isSettled(input, current, folder)) {
    inWork_.waitForEarlier(current.number);
    input = {open(file, folder)};
  }
  if (!input.plan) input.isAIFF = isAIFF(*input.file);
  return input;
}

/// Whether the file is open, and not the output of an earlier one that was not complete then.
bool BatchConversion::isSettled(Input& input, const Current& current, const Folder& folder) {
  try {
    if (!input.file) input.file = open(current.file, folder);
    const FileIdentity& identity = input.file->identity();
    // In this order: what is no longer being written has its last size and time.
    return !inWork_.isWritten(identity) && (jobs_ == 1 || folder.leadsTo(identity.name, identity));
  } catch (const FileError& error) {
    // A link may lead to an output that has its name only when it is complete.
    const bool mayComeYet = error.code() == std::errc::no_such_file_or_directory;
    if (!mayComeYet || inWork_.isFirst(current.number)) throw;
    return false;
  }
}

void BatchConversion::convertInto(const OutputTarget& output, Input& input, Current& current) {
  const BatchOptions& options = names_.options;
  const ProgressHandler progress = [&](double fraction) {
    // A file whose samples are all written is finished rather than left without its end.
    if (listener_.isStopped() && fraction < 1.0)
      throw FileError(ECANCELED,
                      options.safe ? localised("Stopped – '%1$@' is not made.")
                                   : localised("Stopped – '%1$@' is incomplete."),
                      output.url());
    if (inWork_.isFirst(current.number)) listener_.progressMade(fraction);
  };
  const CreationHandler created = [&](const OutputFile& file) {
    if (!current.hasTurn || jobs_ == 1) return;
    inWork_.setOutput(current.number, file);
    endTurn(current);
  };
  const auto reportTimes = [&](int errorNumber) {
    if (errorNumber != 0)
      current.refusals.push_back(
          {output.url().native(), fillText(localised("It has not got the times of its input: %@"),
                                           {std::generic_category().message(errorNumber)})});
  };
  auto* const convertFile = input.isAIFF ? convertAIFFToWAV : convertWAVToAIFF;
  ConversionResult result = convertFile(*input.file, output, optionsFor(current.file), progress,
                                        created, std::exchange(input.plan, std::nullopt));
  reportTimes(result.timesError);
  if (options.verify) {
    const OutputProof proof =
        verifyOutput(*input.file, output, optionsFor(current.file), [&](double) {
          if (listener_.isStopped())
            throw FileError(ECANCELED, localised("Stopped – '%1$@' is not verified."),
                            output.url());
        });
    if (result.timesError == 0) reportTimes(proof.timesError);
    if (proof.differences.areThere())
      return setDifferent(current.entry, current.file, output, proof.differences);
  }
  setConverted(current.entry, current.file, std::move(result));
  addLeftOut(current.entry, options);
}

}  // namespace

void convertBatch(const std::vector<AudioFile>& files, const BatchOptions& options,
                  BatchListener& listener) {
  BatchConversion(files, options, listener).run();
}

}  // namespace corvana
