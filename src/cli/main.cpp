// corvana-cli: converts files and folders from the command line.

#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "batch/batch_driver.hpp"
#include "cli/command_line.hpp"
#include "cli/terminal_view.hpp"
#include "platform/bundle_info.hpp"
#include "platform/ending.hpp"
#include "platform/queues.hpp"
#include "platform/standard_streams.hpp"
#include "platform/texts.hpp"
#include "vocabulary/screen_text.hpp"

namespace {

namespace fs = std::filesystem;

constexpr int statusFailed = 1;

constexpr const char* description =
    "Converts sampled instruments between WAV and AIFF, in both directions, and keeps their\n"
    "loops, markers, cue points, root key, tuning, gain, key and velocity ranges. What the\n"
    "other format cannot hold is reported, file by file.";

constexpr const char* footer =
    "Each output is written beside its input: song.wav becomes song.aif, song.aiff becomes\n"
    "song.wav. An existing file is never replaced unless --overwrite is given; the output is\n"
    "then called \"song (1).aif\", \"song (2).aif\" and so on. The file being read is never\n"
    "changed or replaced, whatever links lead to it.\n"
    "Folders are searched in depth for .wav, .wave, .aif, .aiff and .aifc files; hidden files,\n"
    "packages and subfolders named AIFF or WAV are left out.\n"
    "\n"
    "Standard output carries the log, one entry a file; standard error status and progress.\n"
    "\n"
    "Exit status: 0 every file was converted; 1 a file failed, a path does not exist, or\n"
    "nothing was found to convert; 2 wrong usage; 130 or 143 interrupted.\n"
    "\n"
    "Examples:\n"
    "  corvana-cli piano.wav                      one file\n"
    "  corvana-cli --subfolder Samples/           a whole folder, outputs in AIFF/ and WAV/\n"
    "  corvana-cli --overwrite *.aif > log.txt    replace older outputs, keep the log\n";

struct Arguments {
  corvana::TerminalOptions options;
  std::vector<std::string> paths;
};

/// The parser takes "[a,b]" for a list. Every option is a flag, so an argument that starts with
/// a bracket is a path, and means the same with "./" in front.
std::vector<std::string> protectBrackets(int count, char** arguments) {
  std::vector<std::string> result;
  for (int i = 1; i < count; ++i) {
    const std::string argument = arguments[i];
    result.push_back(argument.starts_with('[') ? "./" + argument : argument);
  }
  return result;
}

/// The arguments, or the exit status where there is nothing to convert.
std::optional<int> parseArguments(int count, char** values, Arguments& arguments) {
  CLI::App app(description, "corvana-cli");
  app.footer(footer);
  app.set_version_flag(
      "--version",
      "corvana-cli " + corvana::bundleValue(corvana::mainBundleInfo(), corvana::bundleVersionKey));
  app.add_flag("--subfolder", arguments.options.useSubfolder,
               "Write into a subfolder named after the output format, AIFF or WAV");
  app.add_flag("--overwrite", arguments.options.overwriteExisting,
               "Replace existing outputs instead of choosing a numbered name");
  app.add_flag("--quiet", arguments.options.quiet, "Show neither status nor progress");
  app.add_option("PATH", arguments.paths, "Files and folders to convert")
      ->required()
      ->type_name("")
      ->option_text("...");
  return corvana::parseCommandLine(app, protectBrackets(count, values));
}

/// Names every path that does not exist. Whether there was one.
bool reportMissing(const std::vector<fs::path>& paths) {
  bool isMissing = false;
  for (const fs::path& path : paths) {
    std::error_code error;
    if (fs::exists(path, error)) continue;
    isMissing = true;
    const std::string reason =
        error ? error.message()
              : std::make_error_code(std::errc::no_such_file_or_directory).message();
    std::fprintf(stderr, "corvana-cli: %s: %s\n", corvana::readableLine(path.native()).c_str(),
                 reason.c_str());
  }
  return isMissing;
}

int convert(const Arguments& arguments) {
  const std::vector<fs::path> paths(arguments.paths.begin(), arguments.paths.end());
  bool failed = reportMissing(paths);

  corvana::RunLoop mainQueue;
  corvana::TerminalView view(arguments.options);
  corvana::catchInterrupts();
  corvana::BatchDriver driver(view, mainQueue);

  driver.processURLs(paths);
  if (driver.totalFiles() == 0) failed = true;
  mainQueue.runUntil([&] { return driver.totalFiles() == 0; });
  if (corvana::interruptStatus() != 0) {
    view.erase();
    return corvana::interruptStatus();
  }
  view.finish();

  if (driver.failedFiles() > 0) failed = true;
  if (!view.logIsComplete()) {
    std::fprintf(stderr, "corvana-cli: the log could not be written completely\n");
    failed = true;
  }
  return failed ? statusFailed : 0;
}

}  // namespace

int main(int argumentCount, char** argumentValues) {
  try {
    corvana::reserveStandardStreams();
    corvana::ignoreWriteSignals();
    corvana::useSystemLanguage(corvana::runningProgramFolder());
    Arguments arguments;
    const auto status = parseArguments(argumentCount, argumentValues, arguments);
    return status ? *status : convert(arguments);
  } catch (...) {
    corvana::endForException();
  }
}
