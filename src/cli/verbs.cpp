#include "cli/verbs.hpp"

#include "cli/check_command.hpp"
#include "cli/info_command.hpp"
#include "cli/verify_command.hpp"

namespace corvana {
namespace {

template <typename Line>
std::shared_ptr<const CLI::App> commandLine() {
  const auto line = std::make_shared<const Line>();
  return {line, &line->app};
}

constexpr Verb table[] = {
    {"check", "Say what is wrong with files", runCheck, commandLine<CheckLine>},
    {"info", "Show what files hold", runInfo, commandLine<InfoLine>},
    {"verify", "Prove that one file holds what another one promises", runVerify,
     commandLine<VerifyLine>},
};

}  // namespace

std::span<const Verb> verbs() {
  return table;
}

}  // namespace corvana
