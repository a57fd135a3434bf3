// corvana-cli: converts files and folders from the command line.

#include <cstdio>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "batch/batch_driver.hpp"
#include "cli/command_line.hpp"
#include "cli/terminal_view.hpp"
#include "platform/bundle_info.hpp"
#include "platform/ending.hpp"
#include "platform/queues.hpp"
#include "platform/standard_streams.hpp"
#include "platform/texts.hpp"

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
    "With --overwrite a file that is an input of the same run is not replaced: the file whose\n"
    "output would have its name fails. Ways out: --to, so that earlier outputs are no inputs,\n"
    "--subfolder, or --overwrite-inputs.\n"
    "\n"
    "Exit status: 0 every file was converted; 1 a file failed, a path does not exist, a folder\n"
    "could not be searched, or nothing was found to convert; 2 wrong usage; 129, 130 or 143\n"
    "interrupted (SIGHUP, Ctrl-C, SIGTERM).\n"
    "\n"
    "Examples:\n"
    "  corvana-cli piano.wav                      one file\n"
    "  corvana-cli --subfolder Samples/           a whole folder, outputs in AIFF/ and WAV/\n"
    "  corvana-cli --overwrite *.aif > log.txt    replace older outputs, keep the log\n"
    "  corvana-cli --to aiff --overwrite Samples/ the same again, from the WAV files only\n";

struct Arguments {
  corvana::TerminalOptions options;
  std::vector<std::string> paths;
};

/// The parser takes "[a,b]" for a list. No option has such a value, so an argument that starts with
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
  using corvana::Direction;
  corvana::BatchOptions& batch = arguments.options.batch;
  batch.clash = corvana::InputClash::fail;
  app.add_flag("--subfolder", batch.useSubfolder,
               "Write into a subfolder named after the output format, AIFF or WAV");
  app.add_flag("--overwrite", batch.overwrite,
               "Replace existing outputs instead of choosing a numbered name");
  app.add_flag_callback(
      "--overwrite-inputs",
      [&batch] {
        batch.overwrite = true;
        batch.clash = corvana::InputClash::replace;
      },
      "Overwrite, and replace even files that are inputs of the same run");
  const std::map<std::string, Direction> directions = {{"aiff", Direction::toAIFF},
                                                       {"wav", Direction::toWAV}};
  app.add_option("--to", batch.direction,
                 "Convert only into this format, aiff or wav; files that have it are no inputs")
      ->transform(CLI::CheckedTransformer(directions).description(""))
      ->type_name("FORMAT");
  app.add_flag("--safe", batch.safe,
               "Give an output its name only when it is complete and on the disk");
  app.add_flag("--quiet", arguments.options.quiet, "Show neither status nor progress");
  app.add_option("PATH", arguments.paths, "Files and folders to convert")
      ->required()
      ->type_name("")
      ->option_text("...");
  return corvana::parseCommandLine(app, protectBrackets(count, values));
}

int convert(const Arguments& arguments) {
  const std::vector<fs::path> paths(arguments.paths.begin(), arguments.paths.end());
  corvana::RunLoop mainQueue;
  corvana::TerminalView view(arguments.options);
  corvana::catchInterrupts();
  corvana::BatchDriver driver(view, mainQueue);

  driver.processURLs(paths);
  bool failed = driver.totalFiles() == 0 || !view.searchIsComplete();
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
