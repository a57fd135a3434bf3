#include "output/verify_output.hpp"

#include <algorithm>
#include <optional>
#include <system_error>

#include "convert/carry_out.hpp"
#include "convert/detect_format.hpp"
#include "convert/plan_conversion.hpp"
#include "convert/reversible.hpp"
#include "platform/folder.hpp"

namespace corvana {
namespace {

/// Looks for the first byte that is not as expected.
class ComparingSink : public ByteSink {
 public:
  explicit ComparingSink(ByteView expected) : expected_(expected) {}
  void reserve(std::uint64_t) override {}
  void append(ByteView bytes) override {
    const ByteView rest = expected_.subspan(position_);
    const auto differ = std::mismatch(bytes.begin(), bytes.end(), rest.begin(), rest.end());
    const bool isSame = differ.first == bytes.end();
    if (!isSame && !difference_)
      difference_ = position_ + static_cast<std::size_t>(differ.first - bytes.begin());
    position_ += std::min(bytes.size(), rest.size());
  }
  /// The end of what is expected counts, too.
  std::optional<std::uint64_t> difference() const {
    if (difference_ || position_ == expected_.size()) return difference_;
    return position_;
  }

 private:
  ByteView expected_;
  std::size_t position_ = 0;
  std::optional<std::uint64_t> difference_;
};

/// Where what the plan makes of `input` is not as expected.
void compareWithPlan(const ConversionPlan& plan, ByteView input, ByteView expected,
                     Differences& differences) {
  ComparingSink sink(expected);
  carryOut(plan, MemorySource(input), sink, {});
  if (const auto offset = sink.difference())
    differences.add({.kind = DifferenceKind::notRestored, .offset = offset});
}

/// The way back from the output of a reversible conversion.
Differences proveWayBack(ByteView input, ByteView output) {
  Differences differences;
  const Prospect back = prospectOf(output, {.reversible = true});
  const auto* plan = std::get_if<ConversionPlan>(&back);
  if (plan == nullptr || !plan->summary.isRestored)
    differences.add({.kind = DifferenceKind::notRestored, .offset = 0});
  else
    compareWithPlan(*plan, output, input, differences);
  return differences;
}

/// The plan by which `input` has given an original; absent where it is converted like any other.
std::optional<ConversionPlan> restoringPlanOf(const InputFile& input,
                                              const ConversionOptions& options) {
  if (!options.reversible) return std::nullopt;
  return input.read([&](ByteView file) {
    const bool isWAV = !detectFormat(file, /*anyEncoding=*/true);
    Warnings ignored;
    return planRestoring(file, isWAV, options, ignored);
  });
}

/// Calls `prove` with the bytes of both.
template <typename Prove>
Differences withBytes(const InputFile& input, const InputFile& output, const Prove& prove) {
  return input.read([&](ByteView inputBytes) {
    return output.read([&](ByteView outputBytes) { return prove(inputBytes, outputBytes); });
  });
}

Differences proveByTheRules(const InputFile& input, const InputFile& output,
                            const ProofTerms& terms, const ProgressHandler& progress) {
  std::uint64_t inputGivenBack = 0;
  std::uint64_t outputGivenBack = 0;
  const auto onProgress = [&](const ProofProgress& reached) {
    inputGivenBack = input.giveBack(inputGivenBack, reached.inputOffset);
    outputGivenBack = output.giveBack(outputGivenBack, reached.outputOffset);
    if (progress) progress(reached.fraction);
  };
  return withBytes(input, output, [&](ByteView inputBytes, ByteView outputBytes) {
    return proveConversion(inputBytes, outputBytes, terms, onProgress);
  });
}

}  // namespace

OutputProof verifyOutput(const InputFile& input, const OutputTarget& output,
                         const ConversionOptions& options, const ProgressHandler& progress) {
  std::optional<Folder> made;
  try {
    for (const std::filesystem::path& name : output.missingFolders)
      made = (made ? *made : output.folder).open(name.native());
  } catch (const std::system_error& error) {
    failReading(error.code().value(), output.url());
  }
  const InputFile file(made ? *made : output.folder, output.name, output.url());
  OutputProof proof{verifyFiles(input, file, {.options = options}, progress)};
  if (output.times) proof.timesError = file.setTimes(*output.times);
  return proof;
}

Differences verifyFiles(const InputFile& input, const InputFile& output, const ProofTerms& terms,
                        const ProgressHandler& progress) {
  if (const auto plan = restoringPlanOf(input, terms.options))
    return withBytes(input, output, [&](ByteView inputBytes, ByteView outputBytes) {
      Differences differences;
      compareWithPlan(*plan, inputBytes, outputBytes, differences);
      return differences;
    });
  Differences differences = proveByTheRules(input, output, terms, progress);
  if (terms.options.reversible && !differences.areThere())
    differences = withBytes(input, output, proveWayBack);
  return differences;
}

}  // namespace corvana
