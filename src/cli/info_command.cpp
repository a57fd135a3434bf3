#include "cli/info_command.hpp"

#include "cli/command_line.hpp"
#include "cli/info_text.hpp"
#include "cli/json_lines.hpp"
#include "platform/standard_streams.hpp"
#include "platform/texts.hpp"
#include "vocabulary/screen_text.hpp"

namespace corvana {
namespace {

constexpr const char* description =
    "Shows what WAV and AIFF files hold: format, length, key and tuning, gain, ranges, loops,\n"
    "markers or cue points, texts and every chunk, also those that a conversion leaves behind;\n"
    "and what a conversion would say. Files that cannot be converted show what can be read of\n"
    "them. Nothing is written.";

constexpr const char* footer =
    "Loops are given by their first and last frame in both formats. Tuning is the correction to\n"
    "apply on playback, in cents (ct); below it stands what each chunk says, as it is stored.\n"
    "Folders are searched as in a conversion. Long lists are cut (\"… and 12 more\"); with --json\n"
    "they go on to 65536 entries, texts to 1000, and the counts beside them speak of all.\n"
    "\n"
    "Options of a conversion show what it would say with them, and change nothing else that is\n"
    "shown. What note 60 is called counts for --root-from-name as well.\n"
    "\n"
    "Exit status: 0 every file was read; 1 a file or folder could not be read, a path does not\n"
    "exist, or nothing was found; 2 wrong usage.\n"
    "\n"
    "Examples:\n"
    "  corvana-cli info piano.wav                  one file\n"
    "  corvana-cli info --middle-c C3 Samples/     a whole folder, note 60 called C3\n"
    "  corvana-cli info --keep names,texts Samples/\n"
    "                                              what a conversion would then leave out\n"
    "  corvana-cli info --json Samples/ | jq -r 'select(.loopCount == 0) | .input'\n"
    "                                              the files without a loop\n"
    "  corvana-cli info --json Samples/ | jq -r 'select(.conversion.error) | .input'\n"
    "                                              the files that cannot be converted\n";

Json infoObject(const std::string& path, const FileDescription& file, const Prospect& prospect,
                int middleC) {
  Json object = fileObject(path);
  addDescription(object, file, middleC);
  addProspect(object, prospect, systemLanguage());
  return object;
}

}  // namespace

InfoLine::InfoLine() : app(description, "corvana-cli info") {
  app.footer(footer);
  addLookOptions(app, options);
  addMiddleC(app, choices.middleC, "What note 60 is called, C4 by default");
  addEncodingOption(app, choices);
  addContentOptions(app, choices);
}

int runInfo(const std::vector<std::string>& arguments) {
  InfoLine line;
  if (const auto status = parseCommandLine(line.app, arguments)) return *status;

  const bool onTerminal = isTerminal(stdout);
  bool isFirst = true;
  return lookAtFiles(line.options, [&](const std::string& path, ByteView content) -> Look {
    const FileDescription file = describeFile(content);
    const Prospect prospect = prospectOf(content, line.choices.forFile(audioFileAt(path).name()));
    const int middleC = line.choices.middleC;
    if (line.options.json) return {lineOf(infoObject(path, file, prospect, middleC))};
    const std::string gap = isFirst ? "" : "\n";
    isFirst = false;
    const std::string name = onTerminal ? readableLine(path) : path;
    return {gap + name + "\n" + infoText(file, prospect, middleC, systemLanguage())};
  });
}

}  // namespace corvana
