#include "cli/check_command.hpp"

#include "check/check_file.hpp"
#include "cli/command_line.hpp"
#include "cli/json_lines.hpp"
#include "platform/standard_streams.hpp"
#include "platform/texts.hpp"
#include "vocabulary/screen_text.hpp"

namespace corvana {
namespace {

constexpr const char* description =
    "Looks for what is wrong with WAV and AIFF sampler files: loops behind the samples, ends that\n"
    "look exclusive, markers that are missing, sizes that are wrong, chunks that disagree, loops\n"
    "that click. Says nothing of files that are in order. Nothing is written.";

constexpr const char* footer =
    "One line a finding:\n"
    "  piano.wav: error: Loop 1 is empty: frames 900 to 800. [loop-empty]\n"
    "An error means that something of the file is lost or damaged, a warning that programs may\n"
    "differ in what they make of it, a note that it is unusual. With --json each finding has its\n"
    "offset in the file, in bytes, and its frame, where it has such a place.\n"
    "\n"
    "A loop's seam is reported where the step from its last frame back to its first one is more\n"
    "than four times the largest step within 1024 frames around them, and more than a thousandth\n"
    "of full scale; single cycles of a wave (a whole file of up to 4096 frames) have no seam.\n"
    "Samples are read around loops only. Folders are searched as in a conversion.\n"
    "\n"
    "Exit status: 0 no errors; 1 errors were found, a file or folder could not be read, a path\n"
    "does not exist, or nothing was found to look at; 2 wrong usage.\n"
    "\n"
    "Examples:\n"
    "  corvana-cli check Samples/                  a whole folder\n"
    "  corvana-cli check --json Samples/ | jq -r 'select(.errorCount > 0) | .input'\n"
    "                                              the files with errors\n"
    "  corvana-cli check --json Samples/ | jq -r '.findings[]?.code' | sort | uniq -c\n"
    "                                              what there is, and how often\n";

Json checkObject(const std::string& path, const std::vector<Finding>& findings) {
  Json object = fileObject(path);
  std::int64_t counts[3] = {};
  Json list = Json::array();
  for (const Finding& finding : findings) {
    ++counts[static_cast<std::size_t>(finding.severity)];
    list.push_back(jsonOf(finding, systemLanguage()));
  }
  object["errorCount"] = counts[static_cast<std::size_t>(Severity::error)];
  object["warningCount"] = counts[static_cast<std::size_t>(Severity::warning)];
  object["noteCount"] = counts[static_cast<std::size_t>(Severity::note)];
  object["findings"] = std::move(list);
  return object;
}

}  // namespace

CheckLine::CheckLine() : app(description, "corvana-cli check") {
  app.footer(footer);
  addLookOptions(app, options);
}

int runCheck(const std::vector<std::string>& arguments) {
  CheckLine line;
  if (const auto status = parseCommandLine(line.app, arguments)) return *status;

  const bool onTerminal = isTerminal(stdout);
  return lookAtFiles(line.options, [&](const std::string& path, ByteView content) -> Look {
    const std::vector<Finding> findings = checkFile(content, describeFile(content));
    if (line.options.json) return {lineOf(checkObject(path, findings)), hasErrors(findings)};
    const std::string name = onTerminal ? readableLine(path) : path;
    std::string lines;
    for (const Finding& finding : findings)
      lines += name + ": " + severityCode(finding.severity) + ": " +
               readableLine(findingText(finding, systemLanguage())) + " [" + findingCode(finding) +
               "]\n";
    return {lines, hasErrors(findings)};
  });
}

}  // namespace corvana
