#include "batch/batch_driver.hpp"

#include <cerrno>
#include <functional>
#include <optional>
#include <utility>

#include "batch/batch_inputs.hpp"
#include "convert/detect_format.hpp"
#include "output/convert_file.hpp"
#include "platform/texts.hpp"
#include "vocabulary/messages.hpp"
#include "vocabulary/screen_text.hpp"
#include "vocabulary/text_format.hpp"

namespace corvana {
namespace {

namespace fs = std::filesystem;

LogEntry successEntry(const AudioFile& file, const ConversionResult& result) {
  LogEntry entry{{std::string(file.name()) + " => " + result.outputURL.filename().native() + "  [" +
                  result.summary + "]"},
                 Outcome::converted,
                 file.path,
                 result.outputURL.native()};
  for (const std::string& warning : result.warnings)
    entry.lines.push_back("   ⚠\uFE0E " + warning);
  return entry;
}

LogEntry failureEntry(const AudioFile& file, const std::string& message) {
  return {{"✗ " + std::string(file.name()) + ": " + message}, Outcome::failed, file.path};
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

InputFolder openFolderOf(const AudioFile& file) {
  try {
    return InputFolder(file);
  } catch (const std::system_error& error) {
    throw FileError(error.code().value(), localised("Cannot read '%1$@': %2$@"), file.path,
                    folderReason(error));
  }
}

/// Whether the file is of the format that the others are to be converted into. One that cannot be
/// read is not: its error belongs in the log.
bool isLeftAlone(const AudioFile& file, const BatchOptions& options) {
  if (options.direction == Direction::both) return false;
  try {
    const InputFile input(openFolderOf(file).folder(), std::string(file.name()), file.path);
    return input.read(detectFormat) == (options.direction == Direction::toAIFF);
  } catch (const std::exception&) {
    return false;
  }
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
  FoundFiles found = collectAudioFiles(urls);
  for (const LeftOut& leftOut : found.leftOut)
    view_.reportLeftOut(leftOut);
  std::erase_if(found.files, [&](const AudioFile& file) { return isLeftAlone(file, options); });
  if (found.files.empty()) {
    view_.appendLog({{localised("No WAV or AIFF files found.")}});
    return;
  }
  const Files files = std::make_shared<const std::vector<AudioFile>>(std::move(found.files));
  const auto clash = options.overwrite ? findNameClash(*files, options.useSubfolder) : std::nullopt;
  if (!clash) return start(files, options);
  view_.confirmReplacingInputs(*clash, [this, files, options](InputClash answer) {
    BatchOptions confirmed = options;
    confirmed.clash = answer;
    start(files, confirmed);
  });
}

void BatchDriver::start(const Files& files, const BatchOptions& options) {
  if (totalFiles_ == 0) view_.runStarted();
  totalFiles_ += static_cast<std::int64_t>(files->size());
  view_.setProgress(static_cast<double>(finishedFiles_) / static_cast<double>(totalFiles_));
  workQueue_.async([this, files, options] { convertFiles(*files, options); });
}

void BatchDriver::convertFiles(const std::vector<AudioFile>& files, const BatchOptions& options) {
  const bool sparesInputs = options.overwrite && options.clash != InputClash::replace;
  static const std::vector<AudioFile> none;
  const BatchInputs inputs(sparesInputs ? files : none);
  std::optional<InputFolder> folder;
  for (const AudioFile& file : files) {
    if (isStopped()) break;
    mainQueue_.post(
        [this, status = fillText(localised("Converting %@ …"), {std::string(file.name())})] {
          view_.setStatus(status);
        });
    LogEntry entry;
    try {
      if (!folder || !folder->isOf(file)) folder = openFolderOf(file);
      entry = convertFile(*folder, file, options, inputs);
    } catch (const ConversionError& error) {
      if (error.kind() == ConversionError::Case::writeFailed) reportReason(error);
      entry = failureEntry(file, errorDescription(error, systemLanguage()));
    } catch (const std::exception& error) {
      entry = failureEntry(file, error.what());
    }
    mainQueue_.post([this, entry = std::move(entry)] { fileFinished(entry); });
  }
  if (isStopped()) mainQueue_.post([this] { totalFiles_ = finishedFiles_ = 0; });
}

LogEntry BatchDriver::convertFile(InputFolder& folder, const AudioFile& file,
                                  const BatchOptions& options, const BatchInputs& inputs) {
  const InputFile input(folder.folder(), std::string(file.name()), file.path);
  const bool isAIFF = input.read(detectFormat);
  const OutputTarget output = makeOutputURL(folder, input, isAIFF, options, inputs);
  const ProgressHandler progress = [&](double fraction) {
    // A file whose samples are all written is finished rather than left without its end.
    if (isStopped() && fraction < 1.0)
      throw FileError(ECANCELED,
                      options.safe ? localised("Stopped – '%1$@' is not made.")
                                   : localised("Stopped – '%1$@' is incomplete."),
                      output.url());
    reportProgress(fraction);
  };
  const ConversionResult result = isAIFF ? convertAIFFToWAV(input, output, progress)
                                         : convertWAVToAIFF(input, output, progress);
  return successEntry(file, result);
}

void BatchDriver::reportReason(const ConversionError& error) {
  const auto& path = std::get<std::string>(error.values().at(0));
  const auto errorNumber = static_cast<int>(std::get<std::int64_t>(error.values().at(1)));
  mainQueue_.post([this, path, reason = std::generic_category().message(errorNumber)] {
    view_.reportReason(path, reason);
  });
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
  view_.appendLog(entry);
  if (totalFiles_ >= 1)
    view_.setProgress(static_cast<double>(finishedFiles_) / static_cast<double>(totalFiles_));
  if (finishedFiles_ < totalFiles_) return;
  view_.setStatus(
      localisedCount("Done – %ld file processed.", "Done – %ld files processed.", finishedFiles_));
  view_.setProgress(1.0);
  totalFiles_ = 0;
  finishedFiles_ = 0;
}

}  // namespace corvana
