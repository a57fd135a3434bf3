// What has to hold for every input.
#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the program with the place where a promise was broken. libFuzzer keeps the input.
#define REQUIRE(condition)                                                         \
  do {                                                                             \
    if (!(condition)) {                                                            \
      std::fprintf(stderr, "%s:%d: broken: %s\n", __FILE__, __LINE__, #condition); \
      std::abort();                                                                \
    }                                                                              \
  } while (false)
