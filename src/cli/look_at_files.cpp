#include "cli/look_at_files.hpp"

#include <cstdio>
#include <filesystem>
#include <optional>

#include "batch/output_url.hpp"
#include "cli/json_lines.hpp"
#include "cli/report.hpp"
#include "platform/texts.hpp"

namespace corvana {
namespace {

constexpr int statusFailed = 1;

}  // namespace

void addLookOptions(CLI::App& app, LookOptions& options) {
  app.add_flag("--json", options.json, "One JSON object a line for each file");
  app.add_option("PATH", options.paths, "Files and folders to look at")
      ->required()
      ->type_name("")
      ->option_text("...");
}

int lookAtFiles(const LookOptions& options,
                const std::function<Look(const std::string& path, ByteView content)>& look) {
  const FoundFiles found = collectAudioFiles(
      std::vector<std::filesystem::path>(options.paths.begin(), options.paths.end()));
  bool failed = found.files.empty();
  for (const LeftOut& leftOut : found.leftOut) {
    failed = failed || leftOut.mayHideFiles;
    report(leftOut.path + ": " + leftOut.reason);
  }
  if (found.files.empty()) report(localised("No WAV or AIFF files found."));

  std::optional<InputFolder> folder;
  for (const AudioFile& file : found.files) {
    Look result;
    try {
      if (!folder || !folder->isOf(file)) folder = openFolderOf(file);
      const InputFile input(folder->folder(), std::string(file.name()), file.path());
      result = input.read([&](ByteView content) { return look(file.path(), content); });
    } catch (const std::system_error& error) {
      result.failed = true;
      if (options.json) {
        Json object = fileObject(file.path());
        object["error"] = errorObject(error, systemLanguage());
        result.output = lineOf(object);
      } else {
        report(error.what());
      }
    }
    failed = failed || result.failed;
    if (std::fwrite(result.output.data(), 1, result.output.size(), stdout) != result.output.size())
      break;
  }
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    report("standard output cannot be written");
    failed = true;
  }
  return failed ? statusFailed : 0;
}

}  // namespace corvana
