// A conversion as a value: everything about the output but its samples, and where those come from.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "aiff/aiff_writer.hpp"
#include "convert/sample_kernels.hpp"
#include "vocabulary/bytes.hpp"
#include "vocabulary/messages.hpp"
#include "vocabulary/warnings.hpp"
#include "wav/wav_writer.hpp"

namespace corvana {

/// Where the samples of a conversion lie in its input, and how they are converted.
struct SampleRun {
  std::uint64_t offset = 0;      ///< of the first sample byte in the input
  std::uint32_t frameCount = 0;  ///< whole frames to convert
  std::uint32_t channels = 1;    ///< samples in a frame
  SampleConversion conversion;   ///< of each sample

  std::uint64_t sourceFrameSize() const {  ///< bytes
    return std::uint64_t{channels} * conversion.sourceWidth;
  }
  std::uint64_t outputFrameSize() const {  ///< bytes
    return std::uint64_t{channels} * conversion.outputWidth;
  }
  std::uint64_t outputSize() const { return frameCount * outputFrameSize(); }  ///< bytes
};

/// What planWAVToAIFF and planAIFFToWAV make of the bytes of an input, and carryOut turns into
/// the bytes of the output. A plain value: it knows no file and stays valid without the input.
struct ConversionPlan {
  /// The format and the mapped records of the output.
  std::variant<AiffContent, WavContent> content;
  ByteBuffer header;   ///< the bytes ahead of the samples
  SampleRun samples;   ///< what lies between header and trailer
  ByteBuffer trailer;  ///< the bytes behind the samples
  Summary summary;     ///< the figures of the output
  Warnings warnings;   ///< what the output cannot keep
  /// IDs of chunks that the output has nothing of, each once and readable, at most 1000: "bext",
  /// "LIST INFO" for a whole list, "IGNR" in a list that is kept otherwise.
  std::vector<std::string> leftOut = {};

  bool makesWAV() const { return std::holds_alternative<WavContent>(content); }  ///< or AIFF
  std::uint64_t outputSize() const {  ///< bytes, of the whole output
    return header.size() + samples.outputSize() + trailer.size();
  }
};

}  // namespace corvana
