// A program as a shell starts it, and what comes out of it.
#pragma once

#include <csignal>
#include <fcntl.h>
#include <functional>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "support/temporary_folder.hpp"

namespace corvana::test {

struct Outcome {
  int status;  ///< exit status, or minus the signal that ended it
  std::string output, errors;
};

struct Process {
  const TemporaryFolder streams;
  const pid_t id;

  /// `prepare` runs in the new process, in the working folder, before the program starts.
  Process(const fs::path& folder, std::vector<std::string> arguments,
          const std::function<void()>& prepare = nullptr)
      : id(::fork()) {
    if (id < 0) throw std::runtime_error("no process");
    if (id > 0) return;
    if (::chdir(folder.c_str()) != 0) ::_exit(99);
    for (const int stream : {1, 2})
      ::dup2(::open((streams / std::to_string(stream)).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600),
             stream);
    for (const int ignoredInTheBackground : {SIGINT, SIGHUP})
      std::signal(ignoredInTheBackground, SIG_DFL);
    ::setenv("LC_ALL", "C.UTF-8", 1);
    ::unsetenv("LANGUAGE");
    if (prepare) prepare();
    std::vector<char*> pointers(arguments.size() + 1);
    for (std::size_t i = 0; i < arguments.size(); ++i)
      pointers[i] = arguments[i].data();
    ::execv(pointers[0], pointers.data());
    ::_exit(99);
  }

  Outcome finish() const {
    int status = 0;
    ::waitpid(id, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status), readText(streams / "1"),
            readText(streams / "2")};
  }
};

}  // namespace corvana::test
