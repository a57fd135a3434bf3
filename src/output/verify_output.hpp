// Reads an output back and proves it against its input.
#pragma once

#include "output/output_file.hpp"
#include "platform/files.hpp"
#include "verify/prove_conversion.hpp"

namespace corvana {

struct OutputProof {
  Differences differences;
  int timesError = 0;  ///< why the output could not get its times back; 0: it could, or has none
};

/// What the finished file that a conversion of `input` wrote to `output` holds otherwise than
/// promised with these options. The times that it was given outlast the reading. Fails with a
/// FileError. What `progress` throws ends the proof.
OutputProof verifyOutput(const InputFile& input, const OutputTarget& output,
                         const ConversionOptions& options, const ProgressHandler& progress);

/// The same for two files of whatever origin, both open. A reversible output is converted back as
/// well; where the input carries its original, the output has to be that. Fails with a FileError,
/// or with a ConversionError where the input cannot be read.
Differences verifyFiles(const InputFile& input, const InputFile& output, const ProofTerms& terms,
                        const ProgressHandler& progress);

}  // namespace corvana
