#include "batch/batch_driver.hpp"

#include <cerrno>
#include <functional>
#include <utility>

#include "batch/audio_files.hpp"
#include "batch/output_url.hpp"
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
  std::vector<std::string> files = collectAudioFiles(urls);
  if (files.empty()) {
    view_.appendLog({{localised("No WAV or AIFF files found.")}});
    return;
  }
  const Options options{view_.useSubfolder(), view_.overwriteExisting()};
  totalFiles_ += static_cast<std::int64_t>(files.size());
  view_.setProgress(static_cast<double>(finishedFiles_) / static_cast<double>(totalFiles_));
  workQueue_.async([this, files = std::move(files), options] { convertFiles(files, options); });
}

void BatchDriver::convertFiles(const std::vector<std::string>& files, Options options) {
  for (const std::string& file : files) {
    if (isStopped()) break;
    convertFile(file, options);
  }
  if (isStopped()) mainQueue_.post([this] { totalFiles_ = finishedFiles_ = 0; });
}

void BatchDriver::convertFile(const fs::path& url, Options options) {
  const std::string fileName = url.filename().native();
  mainQueue_.post([this, status = fillText(localised("Converting %@ …"), {fileName})] {
    view_.setStatus(status);
  });
  FileReport report;
  try {
    const InputFile input(url);
    const bool isAIFF = input.read(detectFormat);
    const OutputTarget output{
        makeOutputURL(url, input.identity(), isAIFF, options.useSubfolder, options.overwrite),
        options.overwrite, input.identity()};
    const ProgressHandler progress = [&](double fraction) {
      // A file whose samples are all written is finished rather than left without its end.
      if (isStopped() && fraction < 1.0)
        throw FileError(ECANCELED, localised("Stopped – '%1$@' is incomplete."), output.url);
      reportProgress(fraction);
    };
    const ConversionResult result = isAIFF ? convertAIFFToWAV(input, output, progress)
                                           : convertWAVToAIFF(input, output, progress);
    report = {successEntry(fileName, result), true};
  } catch (const ConversionError& error) {
    report.entry = failureEntry(fileName, errorDescription(error, systemLanguage()));
  } catch (const std::exception& error) {
    report.entry = failureEntry(fileName, error.what());
  }
  mainQueue_.post([this, report = std::move(report)] { fileFinished(report); });
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
