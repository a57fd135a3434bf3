#include "platform/standard_streams.hpp"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace corvana {

void reserveStandardStreams() {
  int descriptor = ::open("/dev/null", O_RDWR);
  while (descriptor >= 0 && descriptor <= STDERR_FILENO)
    descriptor = ::dup(descriptor);
  if (descriptor >= 0) ::close(descriptor);
}

bool isTerminal(std::FILE* stream) {
  return ::isatty(::fileno(stream)) != 0;
}

std::size_t terminalWidth(std::FILE* stream) {
  winsize size{};
  if (::ioctl(::fileno(stream), TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return 80;
  return size.ws_col;
}

}  // namespace corvana
