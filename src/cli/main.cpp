// corvana-cli: converts files and folders from the command line.

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "batch/batch_driver.hpp"
#include "cli/check_command.hpp"
#include "cli/command_line.hpp"
#include "cli/info_command.hpp"
#include "cli/path_list.hpp"
#include "cli/report.hpp"
#include "cli/terminal_view.hpp"
#include "cli/verify_command.hpp"
#include "platform/bundle_info.hpp"
#include "platform/ending.hpp"
#include "platform/queues.hpp"
#include "platform/standard_streams.hpp"
#include "platform/texts.hpp"

namespace {

namespace fs = std::filesystem;

constexpr int statusFailed = 1;
constexpr int statusWrongUsage = 2;
constexpr int statusLosses = 3;

constexpr const char* description =
    "Converts sampled instruments between WAV and AIFF, in both directions, and keeps their\n"
    "loops, markers, cue points, root key, tuning, gain, key and velocity ranges. What the\n"
    "other format cannot hold is reported, file by file.";

constexpr const char* footer =
    "Each output is written beside its input: song.wav becomes song.aif, song.aiff becomes\n"
    "song.wav. An existing file is never replaced unless --overwrite is given; the output is\n"
    "then called \"song (1).aif\", \"song (2).aif\" and so on. The file being read is never\n"
    "changed or replaced, whatever links lead to it.\n"
    "With --output DIR a tree like that of the inputs grows in DIR: of a folder Kit given as\n"
    "PATH, Kit/Low/a.wav becomes DIR/Kit/Low/a.aif; of \".\" or \"Kit/.\" it is DIR/Low/a.aif; a\n"
    "file given as PATH goes into DIR itself. Missing folders are made, and no search looks\n"
    "into DIR.\n"
    "Folders are searched in depth for .wav, .wave, .aif, .aiff and .aifc files; hidden files,\n"
    "packages and subfolders named AIFF or WAV are left out.\n"
    "\n"
    "A first word \"info\", \"check\" or \"verify\" is a verb (a file named so is \"./info\"):\n"
    "info shows what files hold, check what is wrong with them, verify proves a pair. Each has\n"
    "a --help of its own.\n"
    "\n"
    "--dry-run writes the log of the run, with all its names, warnings and errors, and has its\n"
    "exit status, but makes, changes and removes nothing. Unlike the run it does not see what\n"
    "only writing shows, such as a full disk, nor through links to files that the run would\n"
    "make or replace, and takes names that differ in case for two.\n"
    "--skip-existing leaves out a file whose output, under its name without a number, is\n"
    "complete and not older than the file itself. The log does not mention it; --json does, with\n"
    "\"skipped\".\n"
    "--preserve-times gives an output the access and modification times that its input had\n"
    "before the run. Where that fails, standard error says so; the output stands and the exit\n"
    "status stays.\n"
    "\n"
    "Standard output carries the log, one entry a file; standard error status and progress. With\n"
    "--json each file is one JSON object: its paths, figures, warnings or error, each with a code\n"
    "that never changes, bytes and seconds. A name that is not UTF-8 is also there in hexadecimal\n"
    "digits (\"inputBytes\"). Signs are coloured on a terminal, unless NO_COLOR is set.\n"
    "\n"
    "With --overwrite a file that is an input of the same run is not replaced: the file whose\n"
    "output would have its name fails. Ways out: --to, so that earlier outputs are no inputs,\n"
    "--subfolder, or --overwrite-inputs.\n"
    "\n"
    "Exit status: 0 every file was converted; 1 a file failed, a path does not exist, a folder\n"
    "could not be searched, or nothing was found to convert; 2 wrong usage, or a list that cannot\n"
    "be read; 3, with --strict only, every file was converted and at least one has a warning;\n"
    "129, 130 or 143 interrupted (SIGHUP, Ctrl-C, SIGTERM). Chunks and texts that no conversion\n"
    "carries over do not count as losses.\n"
    "\n"
    "Examples:\n"
    "  corvana-cli piano.wav                      one file\n"
    "  corvana-cli --subfolder Samples/           a whole folder, outputs in AIFF/ and WAV/\n"
    "  corvana-cli --overwrite *.aif > log.txt    replace older outputs, keep the log\n"
    "  corvana-cli --to aiff --overwrite Samples/ the same again, from the WAV files only\n"
    "  corvana-cli --json --strict Samples/ > log.jsonl\n"
    "                                             for programs: status 3 where something was lost\n"
    "  find . -name '*.wav' -mtime -1 -print0 | corvana-cli -0 --files-from -\n"
    "                                             what is new since yesterday\n"
    "  corvana-cli --dry-run --subfolder Samples/ what would happen, nothing is written\n"
    "  corvana-cli --to aiff --output /mnt/sampler --skip-existing --preserve-times Samples/\n"
    "                                             bring a second library up to date\n";

struct Arguments {
  corvana::TerminalOptions options;
  std::vector<std::string> paths;
  std::optional<std::string> list;  ///< file with further paths
  bool endWithNul = false;          ///< the paths of the list
  bool strict = false;
};

/// What is wrong with a folder for outputs; empty: nothing.
std::string canBeFolder(const std::string& path) {
  std::error_code error;
  if (path.empty()) return "The name of a folder is empty";
  return fs::exists(path, error) && !fs::is_directory(path, error) ? "Not a folder: " + path : "";
}

/// The arguments, or the exit status where there is nothing to convert.
std::optional<int> parseArguments(const std::vector<std::string>& values, Arguments& arguments) {
  CLI::App app(description, "corvana-cli");
  app.footer(footer);
  app.set_version_flag(
      "--version",
      "corvana-cli " + corvana::bundleValue(corvana::mainBundleInfo(), corvana::bundleVersionKey));
  using corvana::Direction;
  corvana::BatchOptions& batch = arguments.options.batch;
  batch.clash = corvana::InputClash::fail;
  const std::string where = "Where outputs go";
  auto* const subfolder =
      app.add_flag("--subfolder", batch.useSubfolder,
                   "Write into a subfolder named after the output format, AIFF or WAV")
          ->group(where);
  app.add_option("--output", batch.outputFolder,
                 "Write below this folder, in a tree like that of the inputs")
      ->check(canBeFolder)
      ->excludes(subfolder)
      ->type_name("DIR")
      ->group(where);
  app.add_flag("--overwrite", batch.overwrite,
               "Replace existing outputs instead of choosing a numbered name")
      ->group(where);
  app.add_flag_callback(
         "--overwrite-inputs",
         [&batch] {
           batch.overwrite = true;
           batch.clash = corvana::InputClash::replace;
         },
         "Overwrite, and replace even files that are inputs of the same run")
      ->group(where);

  const std::string what = "What is converted, and how";
  const std::map<std::string, Direction> directions = {{"aiff", Direction::toAIFF},
                                                       {"wav", Direction::toWAV}};
  app.add_option("--to", batch.direction,
                 "Convert only into this format, aiff or wav; files that have it are no inputs")
      ->transform(CLI::CheckedTransformer(directions).description(""))
      ->type_name("FORMAT")
      ->group(what);
  app.add_flag("--skip-existing", batch.skipExisting,
               "Leave out files whose output exists and is not older")
      ->group(what);
  app.add_flag("--preserve-times", batch.preserveTimes, "Give outputs the times of their inputs")
      ->group(what);
  app.add_flag("--safe", batch.safe,
               "Give an output its name only when it is complete and on the disk")
      ->group(what);
  app.add_flag("--verify", batch.verify,
               "Read each output back and prove it against its input; a file that differs fails")
      ->group(what);
  CLI::Option* const list =
      app.add_option("--files-from", arguments.list,
                     "Convert what FILE lists as well, one path a line; \"-\": standard input")
          ->type_name("FILE")
          ->group(what);
  app.add_flag("-0,--null", arguments.endWithNul,
               "The paths of --files-from end with a NUL byte, as find -print0 writes them")
      ->needs(list)
      ->option_text(" ")
      ->group(what);

  const std::string said = "What is said";
  app.add_flag("--dry-run", batch.dryRun, "Only write the log of what would be done")->group(said);
  app.add_flag("--quiet", arguments.options.quiet, "Show neither status nor progress")->group(said);
  app.add_flag("--json", arguments.options.json,
               "Write the log as JSON, one object a line for each file")
      ->group(said);
  app.add_flag("--strict", arguments.strict,
               "Exit with status 3 when a file has a warning and nothing worse happened")
      ->group(said);
  app.add_option("PATH", arguments.paths, "Files and folders to convert")
      ->type_name("")
      ->option_text("...");
  app.callback([&arguments, list] {
    if (arguments.paths.empty() && list->empty()) throw CLI::RequiredError("PATH or --files-from");
  });
  return corvana::parseCommandLine(app, values);
}

/// Those of the list come behind those that were given. Absent where it cannot be read.
std::optional<std::vector<fs::path>> pathsToConvert(const Arguments& arguments) {
  std::vector<fs::path> paths(arguments.paths.begin(), arguments.paths.end());
  try {
    if (arguments.list)
      corvana::readPathList(*arguments.list, arguments.endWithNul ? '\0' : '\n', paths);
    return paths;
  } catch (const std::exception& error) {
    corvana::report(error.what());
    return std::nullopt;
  }
}

int runConvert(const std::vector<std::string>& values) {
  Arguments arguments;
  if (const auto status = parseArguments(values, arguments)) return *status;
  const auto paths = pathsToConvert(arguments);
  if (!paths) return statusWrongUsage;
  corvana::RunLoop mainQueue;
  corvana::TerminalView view(arguments.options);
  corvana::catchInterrupts();
  corvana::BatchDriver driver(view, mainQueue);

  driver.processURLs(*paths);
  bool failed = driver.totalFiles() == 0 || !view.searchIsComplete();
  mainQueue.runUntil([&] { return driver.totalFiles() == 0; });
  if (corvana::interruptStatus() != 0) {
    view.erase();
    return corvana::interruptStatus();
  }
  view.finish();

  if (driver.failedFiles() > 0) failed = true;
  if (!view.logIsComplete()) {
    corvana::report("the log could not be written completely");
    failed = true;
  }
  if (failed) return statusFailed;
  return arguments.strict && view.hasLosses() ? statusLosses : 0;
}

/// A first word that asks for something other than converting. `run` takes the arguments behind it
/// and gives the exit status.
struct Verb {
  const char* name;
  int (*run)(const std::vector<std::string>& arguments);
};

constexpr Verb verbs[] = {
    {"check", corvana::runCheck},
    {"info", corvana::runInfo},
    {"verify", corvana::runVerify},
};

}  // namespace

int main(int argumentCount, char** argumentValues) {
  try {
    corvana::reserveStandardStreams();
    corvana::ignoreWriteSignals();
    corvana::useSystemLanguage(corvana::runningProgramFolder());
    std::vector<std::string> arguments = corvana::protectBrackets(argumentCount, argumentValues);
    for (const Verb& verb : verbs) {
      if (arguments.empty() || arguments.front() != verb.name) continue;
      arguments.erase(arguments.begin());
      return verb.run(arguments);
    }
    return runConvert(arguments);
  } catch (...) {
    corvana::endForException();
  }
}
