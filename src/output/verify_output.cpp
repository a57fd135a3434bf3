#include "output/verify_output.hpp"

#include <optional>
#include <system_error>

#include "platform/folder.hpp"

namespace corvana {

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
  std::uint64_t inputGivenBack = 0;
  std::uint64_t outputGivenBack = 0;
  const auto onProgress = [&](const ProofProgress& reached) {
    inputGivenBack = input.giveBack(inputGivenBack, reached.inputOffset);
    outputGivenBack = output.giveBack(outputGivenBack, reached.outputOffset);
    if (progress) progress(reached.fraction);
  };
  return input.read([&](ByteView inputBytes) {
    return output.read([&](ByteView outputBytes) {
      return proveConversion(inputBytes, outputBytes, terms, onProgress);
    });
  });
}

}  // namespace corvana
