// Searches folders as a batch does and prints how many files it would convert, to be timed as a
// program beside find.

#include <cstdio>

#include "batch/audio_files.hpp"

int main(int count, char** arguments) {
  const auto found = corvana::collectAudioFiles({arguments + 1, arguments + count});
  std::printf("%zu\n", found.files.size());
}
