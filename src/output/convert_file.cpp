#include "output/convert_file.hpp"

#include <utility>

#include "convert/carry_out.hpp"
#include "convert/plan_aiff_to_wav.hpp"
#include "convert/plan_wav_to_aiff.hpp"
#include "platform/texts.hpp"

namespace corvana {
namespace {

/// The content of a mapped file, read from start to end.
class InputFileSource : public ByteSource {
 public:
  explicit InputFileSource(const InputFile& file) : file_(file) {}
  void read(std::uint64_t offset, std::size_t size,
            const std::function<void(ByteView)>& use) const override {
    file_.read(
        [&](ByteView content) { use(content.subspan(static_cast<std::size_t>(offset), size)); });
    givenBack_ = file_.giveBack(givenBack_, offset + size);
  }

 private:
  const InputFile& file_;
  mutable std::uint64_t givenBack_ = 0;  ///< up to where nothing is kept in the memory
};

ConversionResult convertFile(ConversionPlan plan, const InputFile& input,
                             const OutputTarget& output, const ProgressHandler& progress,
                             const CreationHandler& created) {
  OutputFile file(output);
  created(file);
  carryOut(plan, InputFileSource(input), file, progress);
  file.close();

  ConversionResult result = resultOf(std::move(plan), output);
  result.timesError = file.timesError();
  return result;
}

}  // namespace

ConversionResult resultOf(ConversionPlan plan, const OutputTarget& output) {
  ConversionResult result{
      output.url(), makeSummary(plan.summary, systemLanguage()), {}, plan.summary};
  for (const Warning& warning : plan.warnings)
    result.warnings.push_back(warningText(warning, systemLanguage()));
  result.warningRecords = std::move(plan.warnings);
  result.leftOut = std::move(plan.leftOut);
  result.frames = plan.samples.frameCount;
  result.bytes = plan.outputSize();
  return result;
}

ConversionResult convertWAVToAIFF(const InputFile& input, const OutputTarget& output,
                                  const ConversionOptions& options, const ProgressHandler& progress,
                                  const CreationHandler& created,
                                  std::optional<ConversionPlan> plan) {
  if (!plan) plan = input.read([&](ByteView file) { return planWAVToAIFF(file, options); });
  return convertFile(std::move(*plan), input, output, progress, created);
}

ConversionResult convertAIFFToWAV(const InputFile& input, const OutputTarget& output,
                                  const ConversionOptions& options, const ProgressHandler& progress,
                                  const CreationHandler& created,
                                  std::optional<ConversionPlan> plan) {
  if (!plan) plan = input.read([&](ByteView file) { return planAIFFToWAV(file, options); });
  return convertFile(std::move(*plan), input, output, progress, created);
}

}  // namespace corvana
