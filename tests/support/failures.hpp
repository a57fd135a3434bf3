// Tables of rejected inputs.
#pragma once

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "vocabulary/bytes.hpp"
#include "vocabulary/errors.hpp"

namespace corvana::test {

struct Rejection {
  const char* name;
  ByteBuffer file;
  std::string message;  ///< every case has its own
};

template <typename Read>
void expectRejections(const std::vector<Rejection>& cases, const Read& read) {
  for (const Rejection& c : cases) {
    SCOPED_TRACE(c.name);
    try {
      read(c.file);
      ADD_FAILURE() << "was accepted";
    } catch (const ConversionError& error) {
      EXPECT_EQ(error.errorDescription(), c.message);
    }
  }
}

}  // namespace corvana::test
