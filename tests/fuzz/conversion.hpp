// Whole conversions of fuzzed files, in memory.
#pragma once

#include <cassert>
#include <optional>

#include "convert/carry_out.hpp"
#include "verify/prove_conversion.hpp"
#include "vocabulary/messages.hpp"

namespace corvana::fuzz {

/// The output; absent when the input cannot be converted. Progress only rises, and to 1. What is
/// not an original restored is proved to be as promised.
inline std::optional<ByteBuffer> convert(ConversionPlan (*planner)(ByteView,
                                                                   const ConversionOptions&),
                                         ByteView content, const ConversionOptions& options = {}) {
  ConversionPlan plan;
  try {
    plan = planner(content, options);
  } catch (const ConversionError& error) {
    assert(!errorDescription(error, Language()).empty());
    return std::nullopt;
  }
  assert(plan.summary.channels >= 1 && plan.summary.bits >= 1);
  for (const Warning& warning : plan.warnings)
    assert(!warningText(warning, Language()).empty());
  double lastProgress = 0;
  MemorySink output;
  carryOut(plan, MemorySource(content), output, [&](double fraction) {
    assert(fraction > lastProgress && fraction <= 1.0);
    lastProgress = fraction;
  });
  assert(lastProgress == 1.0);
  assert(output.bytes.size() == plan.outputSize());
  const ProofTerms terms{Producer::thisProgram, options};
  assert(plan.summary.isRestored || !proveConversion(content, output.bytes, terms, {}).areThere());
  assert(plan.leftOut.size() <= 1000);
  return output.bytes;
}

}  // namespace corvana::fuzz
