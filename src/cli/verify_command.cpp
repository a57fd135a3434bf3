#include "cli/verify_command.hpp"

#include <cstdio>
#include <exception>

#include "batch/output_url.hpp"
#include "cli/command_line.hpp"
#include "cli/json_lines.hpp"
#include "cli/report.hpp"
#include "convert/detect_format.hpp"
#include "output/verify_output.hpp"
#include "platform/standard_streams.hpp"
#include "platform/texts.hpp"
#include "verify/difference_texts.hpp"
#include "vocabulary/screen_text.hpp"

namespace corvana {
namespace {

constexpr int statusFailed = 1;

constexpr const char* description =
    "Proves that OUTPUT, converted from INPUT by whatever program, holds what it should: every\n"
    "sample by its value, loops, markers or cue points, root key, tuning, gain and ranges as\n"
    "corvana-cli converts them, and sizes and padding that are right in themselves. Nothing is\n"
    "written.";

constexpr const char* footer =
    "One of the files is WAV, the other AIFF or AIFF-C. Every difference is a line on standard\n"
    "output, up to 1000 of them and then their number. Chunks may come in any order, and chunks\n"
    "that corvana-cli does not write are no differences. Every encoding is compared.\n"
    "\n"
    "What was converted with --no-loops, --first-loop-only, --keep or --root-from-name is judged\n"
    "by the same options. With --reversible OUTPUT has to give INPUT back to the last byte as\n"
    "well, or to be the original that INPUT carries.\n"
    "\n"
    "Exit status: 0 no differences; 1 differences, or a file that cannot be read; 2 wrong usage.\n"
    "\n"
    "Examples:\n"
    "  corvana-cli verify piano.wav piano.aif          what was made of a WAV file\n"
    "  corvana-cli verify piano.aif piano.wav          what was made of an AIFF file\n"
    "  corvana-cli verify --keep names,texts --reversible piano.wav piano.aif\n"
    "                                                  what was made with these options\n"
    "  corvana-cli verify --json piano.wav piano.aif | jq -r '.differences[].code'\n"
    "                                                  what kinds of differences there are\n"
    "  corvana-cli --verify piano.wav                  converts, and proves it at once\n";

/// Open for reading; fails with a FileError.
class NamedFile {
 public:
  explicit NamedFile(const std::string& path)
      : file_(audioFileAt(path)),
        content_(openFolderOf(file_).folder(), std::string(file_.name()), path) {}

  const InputFile& content() const { return content_; }

  std::string_view name() const { return file_.name(); }

  /// Fails with a FileError that names the file, where it is neither WAV nor AIFF as well.
  bool isAIFF() const {
    try {
      return content_.read([](ByteView content) { return detectFormat(content, true); });
    } catch (const ConversionError& error) {
      throw FileError(EINVAL, localised("Cannot read '%1$@': %2$@"), file_.path(),
                      errorDescription(error, systemLanguage()));
    }
  }

 private:
  AudioFile file_;
  InputFile content_;
};

/// What happened, either way.
struct Verdict {
  bool failed = true;
  std::string output = {};  ///< for standard output
  std::string remark = {};  ///< for standard error
};

Verdict verdictOf(const Differences& differences, Json& object, bool json) {
  const Language& language = systemLanguage();
  Verdict verdict{.failed = differences.areThere()};
  if (json) {
    addDifferences(object, differences, language);
    verdict.output = lineOf(object);
    return verdict;
  }
  const bool onTerminal = isTerminal(stdout);
  for (const Difference& difference : differences.kept) {
    const std::string text = differenceText(difference, language);
    verdict.output += (onTerminal ? readableLine(text) : text) + "\n";
  }
  if (const std::uint64_t further = differences.count - differences.kept.size(); further > 0)
    verdict.output += furtherDifferences(further, language) + "\n";
  if (!differences.areThere()) verdict.remark = localised("No differences.");
  return verdict;
}

Verdict verify(const VerifyLine& line) {
  Json object = fileObject(line.input);
  addPath(object, "output", line.output);
  try {
    const NamedFile input(line.input);
    const NamedFile output(line.output);
    const bool fromAIFF = input.isAIFF();
    if (output.isAIFF() == fromAIFF)
      throw FileError(EINVAL,
                      localised("'%1$@' is of the same format as the input – one file has to be "
                                "WAV, the other AIFF."),
                      line.output);
    object["direction"] = directionCode(fromAIFF);
    ProofTerms terms{Producer::anyProgram, line.choices.forFile(input.name())};
    terms.options.anyEncoding = true;
    const Differences differences = verifyFiles(input.content(), output.content(), terms, {});
    return verdictOf(differences, object, line.json);
  } catch (const ConversionError& error) {
    object["error"] = errorObject(error, systemLanguage());
    const std::string text = errorDescription(error, systemLanguage());
    return line.json ? Verdict{.output = lineOf(object)}
                     : Verdict{.remark = line.input + ": " + text};
  } catch (const std::system_error& error) {
    object["error"] = errorObject(error, systemLanguage());
    return line.json ? Verdict{.output = lineOf(object)} : Verdict{.remark = error.what()};
  }
}

}  // namespace

VerifyLine::VerifyLine() : app(description, "corvana-cli verify") {
  app.footer(footer);
  app.add_flag("--json", json, "One JSON object with all differences");
  app.add_flag("--any-encoding")->description("Of no effect: every encoding is compared");
  CLI::Option* const fromName = addContentOptions(app, choices);
  addMiddleC(app, choices.middleC, "What such names call note 60, C4 by default")->needs(fromName);
  app.add_option("INPUT", input, "The file that was converted")->required()->type_name("");
  app.add_option("OUTPUT", output, "What it was converted into")->required()->type_name("");
}

int runVerify(const std::vector<std::string>& arguments) {
  VerifyLine line;
  if (const auto status = parseCommandLine(line.app, arguments)) return *status;
  Verdict verdict = verify(line);
  const std::string& output = verdict.output;
  if (std::fwrite(output.data(), 1, output.size(), stdout) != output.size() ||
      std::fflush(stdout) != 0) {
    verdict.remark = "standard output cannot be written";
    verdict.failed = true;
  }
  if (!verdict.remark.empty()) report(verdict.remark);
  return verdict.failed ? statusFailed : 0;
}

}  // namespace corvana
