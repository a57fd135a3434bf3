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

LogEntry successEntry(const std::string& fileName, const ConversionResult& result) {
  LogEntry entry{
      {fileName + " => " + result.outputURL.filename().native() + "  [" + result.summary + "]"}};
  for (const std::string& warning : result.warnings)
    entry.lines.push_back("   ⚠\uFE0E " + warning);
  return entry;
}

LogEntry failureEntry(const std::string& fileName, const std::string& message) {
  return {{"✗ " + fileName + ": " + message}};
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
    const std::string fileName(file.name());
    mainQueue_.post([this, status = fillText(localised("Converting %@ …"), {fileName})] {
      view_.setStatus(status);
    });
    FileReport report;
    try {
      if (!folder || !folder->isOf(file)) folder = openFolderOf(file);
      report = {convertFile(*folder, file, options, inputs), true};
    } catch (const ConversionError& error) {
      if (error.kind() == ConversionError::Case::writeFailed) reportReason(error);
      report.entry = failureEntry(fileName, errorDescription(error, systemLanguage()));
    } catch (const std::exception& error) {
      report.entry = failureEntry(fileName, error.what());
    }
    mainQueue_.post([this, report = std::move(report)] { fileFinished(report); });
  }
  if (isStopped()) mainQueue_.post([this] { totalFiles_ = finishedFiles_ = 0; });
}

LogEntry BatchDriver::convertFile(InputFolder& folder, const AudioFile& file,
                                  const BatchOptions& options, const BatchInputs& inputs) {
  const std::string fileName(file.name());
  const InputFile input(folder.folder(), fileName, file.path);
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
  return successEntry(fileName, result);
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

void BatchDriver::fileFinished(const FileReport& report) {
  ++finishedFiles_;
  if (!report.converted) ++failedFiles_;
  view_.appendLog(report.entry);
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
