#include "cli/convert_command.hpp"

#include <filesystem>
#include <memory>
#include <optional>

#include "batch/batch_driver.hpp"
#include "cli/command_line.hpp"
#include "cli/path_list.hpp"
#include "cli/report.hpp"
#include "platform/bundle_info.hpp"
#include "platform/ending.hpp"
#include "platform/queues.hpp"

namespace corvana {
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
    "It also names the chunks that are left out, as --json always does, and the log with any\n"
    "option for what outputs get; --keep does so in a warning.\n"
    "--keep names carries over what cue points, markers and loops are called, and notes on them;\n"
    "--keep texts title, author, copyright, comments and an ID3 tag; --keep names,texts both.\n"
    "--skip-existing leaves out a file whose output, under its name without a number, is\n"
    "complete and not older than the file itself. The log does not mention it; --json does, with\n"
    "\"skipped\".\n"
    "--preserve-times gives an output the access and modification times that its input had\n"
    "before the run. Where that fails, standard error says so; the output stands and the exit\n"
    "status stays.\n"
    "\n"
    "Several files are converted at the same time, as many as there are processors or --jobs "
    "says;\n"
    "names, bytes and log are the same as with --jobs 1. With --overwrite-inputs, where what a "
    "file\n"
    "holds may depend on those before it, they are converted one after another.\n"
    "\n"
    "Standard output carries the log, one entry a file; standard error status and progress. With\n"
    "--json each file is one JSON object: its paths, figures, warnings or error, each with a code\n"
    "that never changes, bytes and seconds. A name that is not UTF-8 is also there in hexadecimal\n"
    "digits (\"inputBytes\"). Signs are coloured on a terminal, unless NO_COLOR is set.\n"
    "\n"
    "With --reversible outputs carry what their format cannot hold, and converting them back with\n"
    "--reversible gives the original to the last byte. If they were edited in between, the edits\n"
    "count: a warning says so. --root-from-name takes notes (\"Piano C#3\", \"bass_a2\") and key\n"
    "numbers (\"60_Pad\"); files with a key keep it. --first-loop-only takes the sustain loop of\n"
    "AIFF files, or else the release loop.\n"
    "\n"
    "With --overwrite a file that is an input of the same run is not replaced: the file whose\n"
    "output would have its name fails. Ways out: --to, so that earlier outputs are no inputs,\n"
    "--subfolder, or --overwrite-inputs.\n"
    "\n"
    "Exit status: 0 every file was converted; 1 a file failed, a path does not exist, a folder\n"
    "could not be searched, or nothing was found to convert; 2 wrong usage, or a list that cannot\n"
    "be read; 3, with --strict only, every file was converted and at least one has a warning;\n"
    "129, 130 or 143 interrupted (SIGHUP, Ctrl-C, SIGTERM). Chunks, names and texts that are left\n"
    "out count only where a warning names them.\n"
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
    "  corvana-cli --to aiff --output ~/Copy --skip-existing --preserve-times Samples/\n"
    "                                             bring a second library up to date\n";

/// What is wrong with a folder for outputs; empty: nothing.
std::string canBeFolder(const std::string& path) {
  std::error_code error;
  if (path.empty()) return "The name of a folder is empty";
  return fs::exists(path, error) && !fs::is_directory(path, error) ? "Not a folder: " + path : "";
}

/// Those of the list come behind those that were given. Absent where it cannot be read.
std::optional<std::vector<fs::path>> pathsToConvert(const ConvertLine& line) {
  std::vector<fs::path> paths(line.paths.begin(), line.paths.end());
  try {
    if (line.list) readPathList(*line.list, line.endWithNul ? '\0' : '\n', paths);
    return paths;
  } catch (const std::exception& error) {
    report(error.what());
    return std::nullopt;
  }
}

}  // namespace

ConvertLine::ConvertLine() : app(description, "corvana-cli") {
  app.footer(footer);
  app.set_version_flag("--version",
                       "corvana-cli " + bundleValue(mainBundleInfo(), bundleVersionKey));
  BatchOptions& batch = options.batch;
  batch.clash = InputClash::fail;
  batch.jobs = 0;
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
           batch.clash = InputClash::replace;
         },
         "Overwrite, and replace even files that are inputs of the same run")
      ->group(where);

  const std::string what = "What is converted, and how";
  addChoice<Direction>(app, "--to", batch.direction,
                       {{"aiff", Direction::toAIFF}, {"wav", Direction::toWAV}},
                       "Convert only into this format; files that have it are no inputs")
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
  CLI::Option* const listOption =
      app.add_option("--files-from", list,
                     "Convert what FILE lists as well, one path a line; \"-\": standard input")
          ->type_name("FILE")
          ->group(what);
  app.add_flag("-0,--null", endWithNul,
               "The paths of --files-from end with a NUL byte, as find -print0 writes them")
      ->needs(listOption)
      ->option_text(" ")
      ->group(what);

  app.add_option("--jobs", batch.jobs,
                 "Convert so many files at the same time; 0, as without it: one for each processor")
      ->check(CLI::Range(0, 256).description(""))
      ->type_name("N")
      ->group(what);

  const std::string standard = app.option_defaults()->get_group();
  app.option_defaults()->group("What outputs get");
  addEncodingOption(app, choices);
  CLI::Option* const fromName = addContentOptions(app, choices);
  addMiddleC(app, choices.middleC, "What such names call note 60, C4 by default")->needs(fromName);
  app.option_defaults()->group(standard);

  const std::string said = "What is said";
  app.add_flag("--dry-run", batch.dryRun, "Only write the log of what would be done")->group(said);
  app.add_flag("--quiet", options.quiet, "Show neither status nor progress")->group(said);
  app.add_flag("--json", options.json, "Write the log as JSON, one object a line for each file")
      ->group(said);
  app.add_flag("--strict", strict,
               "Exit with status 3 when a file has a warning and nothing worse happened")
      ->group(said);
  app.add_option("PATH", paths, "Files and folders to convert")->type_name("")->option_text("...");
  app.callback([this, listOption] {
    options.batch.conversion = choices.options;
    options.batch.rootKeysByMiddleC = choices.rootKeysByMiddleC();
    if (paths.empty() && listOption->empty()) throw CLI::RequiredError("PATH or --files-from");
  });
}

int runConvert(const std::vector<std::string>& values) {
  ConvertLine line;
  if (const auto status = parseCommandLine(line.app, values)) return *status;
  const auto paths = pathsToConvert(line);
  if (!paths) return statusWrongUsage;
  TerminalView view(line.options);
  catchInterrupts();
  DirectQueue mainQueue;
  BatchDriver driver(view, mainQueue, std::make_unique<DirectQueue>());

  driver.processURLs(*paths);
  if (interruptStatus() != 0) {
    view.erase();
    return interruptStatus();
  }
  view.finish();

  bool failed = !view.hasFiles() || !view.searchIsComplete() || driver.failedFiles() > 0;
  if (!view.logIsComplete()) {
    report("the log could not be written completely");
    failed = true;
  }
  if (failed) return statusFailed;
  return line.strict && view.hasLosses() ? statusLosses : 0;
}

}  // namespace corvana
