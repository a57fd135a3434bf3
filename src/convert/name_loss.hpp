// Names that a conversion cannot keep as they are, said in one warning for all.
#pragma once

#include <cstdint>

#include "vocabulary/warnings.hpp"

namespace corvana {

/// Those of one kind of warning.
struct NameLoss {
  std::int64_t count = 0;
  std::int64_t firstID = 0;  ///< of a cue point or marker

  void add(std::int64_t id) {
    if (count++ == 0) firstID = id;
  }
  void report(WarningKind kind, Warnings& warnings) const {
    if (count > 0) addWarning(warnings, kind, {count, firstID});
  }
};

}  // namespace corvana
