#include "verify/prove_conversion.hpp"

#include "aiff/aiff_reader.hpp"
#include "verify/compare_aiff.hpp"
#include "verify/compare_wav.hpp"
#include "wav/wav_reader.hpp"

namespace corvana {
namespace {

template <typename Info>
Differences prove(const Info& info, ByteView input, ByteView output, const ProofTerms& terms,
                  const ProofHandler& progress) {
  Differences differences;
  try {
    compareOutput(info, input, output, terms, differences, progress);
  } catch (const ConversionError& error) {
    differences.add({.kind = DifferenceKind::unreadable, .reason = error});
  }
  return differences;
}

}  // namespace

Differences proveConversion(ByteView input, ByteView output, const ProofTerms& terms,
                            const ProofHandler& progress) {
  const bool isAIFF = Fields(input, ByteOrder::big).id(0) == "FORM";
  const bool anyEncoding = terms.options.anyEncoding;
  return isAIFF ? prove(parseAiff(input, anyEncoding), input, output, terms, progress)
                : prove(parseWav(input, anyEncoding), input, output, terms, progress);
}

}  // namespace corvana
