// corvana-cli: converts files and folders from the command line.

#include <string>
#include <vector>

#include "cli/command_line.hpp"
#include "cli/convert_command.hpp"
#include "cli/verbs.hpp"
#include "platform/ending.hpp"
#include "platform/standard_streams.hpp"
#include "platform/texts.hpp"

int main(int argumentCount, char** argumentValues) {
  try {
    corvana::reserveStandardStreams();
    corvana::ignoreWriteSignals();
    corvana::useSystemLanguage(corvana::runningProgramFolder(argumentValues[0]));
    std::vector<std::string> arguments = corvana::protectBrackets(argumentCount, argumentValues);
    for (const corvana::Verb& verb : corvana::verbs()) {
      if (arguments.empty() || arguments.front() != verb.name) continue;
      arguments.erase(arguments.begin());
      return verb.run(arguments);
    }
    return corvana::runConvert(arguments);
  } catch (...) {
    corvana::endForException();
  }
}
