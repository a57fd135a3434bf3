#include "platform/standard_streams.hpp"

#include <algorithm>
#include <clocale>
#include <cwchar>
#include <fcntl.h>
#include <locale.h>
#include <sys/ioctl.h>
#include <unistd.h>
#include <wchar.h>

#include "vocabulary/unicode.hpp"

namespace corvana {
namespace {

/// Puts the calling thread into UTF-8 for a while, whatever the user's character set is: our texts
/// are in UTF-8 on every terminal.
class Utf8Locale {
 public:
  Utf8Locale() : previous_(::uselocale(utf8())) {}
  Utf8Locale(const Utf8Locale&) = delete;
  Utf8Locale& operator=(const Utf8Locale&) = delete;
  ~Utf8Locale() { ::uselocale(previous_); }

 private:
  static locale_t utf8() {
    static const locale_t locale = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t());
    return locale;  // none where the system has no such locale: then the user's stays
  }

  locale_t previous_;
};

/// Of one character. What the C library does not know may be wide.
std::size_t columnsOf(std::string_view character) {
  constexpr std::size_t most = 2;
  wchar_t wide = 0;
  std::mbstate_t state{};
  if (std::mbrtowc(&wide, character.data(), character.size(), &state) != character.size())
    return most;
  const int columns = ::wcwidth(wide);
  return columns < 0 ? most : static_cast<std::size_t>(columns);
}

}  // namespace

void reserveStandardStreams() {
  // The lowest free number is the one that is given to a file.
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream)
    if (::fcntl(stream, F_GETFD) < 0) ::open("/dev/null", O_RDONLY);
}

bool isTerminal(std::FILE* stream) {
  return ::isatty(::fileno(stream)) != 0;
}

std::size_t terminalWidth(std::FILE* stream) {
  winsize size{};
  if (::ioctl(::fileno(stream), TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return 80;
  return size.ws_col;
}

std::string_view firstColumns(std::string_view line, std::size_t columns) {
  const Utf8Locale locale;
  std::size_t end = 0;
  while (end < line.size()) {
    const std::size_t length = std::max<std::size_t>(utf8SequenceLength(line.substr(end)), 1);
    const std::size_t taken = columnsOf(line.substr(end, length));
    if (taken > columns) break;
    columns -= taken;
    end += length;
  }
  return line.substr(0, end);
}

}  // namespace corvana
