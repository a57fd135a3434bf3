#include "cli/command_line.hpp"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <sstream>
#include <system_error>
#include <utility>

#include "vocabulary/screen_text.hpp"

namespace corvana {
namespace {

constexpr int statusFailed = 1;
constexpr int statusWrongUsage = 2;

/// For somebody whose file has the look of an option; empty where there is none such.
std::string hint(const std::vector<std::string>& arguments) {
  for (const std::string& argument : arguments) {
    std::error_code error;
    if (argument == "--") break;
    if (argument.starts_with('-') &&
        std::filesystem::exists(std::filesystem::symlink_status(argument, error)))
      return "A file whose name begins with \"-\" is given as \"./" + readableLine(argument) +
             "\".\n";
  }
  return {};
}

}  // namespace

std::vector<std::string> protectBrackets(int count, char** arguments) {
  std::vector<std::string> result;
  for (int i = 1; i < count; ++i) {
    std::string argument = arguments[i];
    const std::size_t value = argument.starts_with("--") ? argument.find('=') + 1 : 0;
    if (argument.compare(value, 1, "[") == 0) argument.insert(value, "./");
    result.push_back(std::move(argument));
  }
  return result;
}

std::optional<int> parseCommandLine(CLI::App& app, const std::vector<std::string>& arguments) {
  try {
    // The parser wants them last one first.
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    return std::nullopt;
  } catch (const CLI::ParseError& error) {
    const CLI::Error readable(error.get_name(), readableLine(error.what()), error.get_exit_code());
    std::ostringstream output;
    std::ostringstream mistake;
    if (app.exit(readable, output, mistake) != 0) {
      std::fputs((mistake.str() + hint(arguments)).c_str(), stderr);
      return statusWrongUsage;
    }
    if (std::fputs(output.str().c_str(), stdout) >= 0 && std::fflush(stdout) == 0) return 0;
    std::fprintf(stderr, "%s: standard output cannot be written\n", app.get_name().c_str());
    return statusFailed;
  }
}

}  // namespace corvana
