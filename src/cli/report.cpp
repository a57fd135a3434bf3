#include "cli/report.hpp"

#include <cstdio>

#include "vocabulary/screen_text.hpp"

namespace corvana {

void report(const std::string& text) {
  std::fprintf(stderr, "corvana-cli: %s\n", readableLine(text).c_str());
}

}  // namespace corvana
