// Everything that the engine says of a file, made from its records: the one place where the texts
// of warnings, errors and the summary are written.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vocabulary/errors.hpp"
#include "vocabulary/language.hpp"
#include "vocabulary/sample_encoding.hpp"
#include "vocabulary/warnings.hpp"

namespace corvana {

/// The figures of a converted file.
struct Summary {
  std::int64_t bits = 0;         ///< per sample
  std::int64_t channels = 0;     ///< samples in a frame
  std::uint32_t sampleRate = 0;  ///< Hz
  std::optional<std::int64_t> rootKey =
      std::nullopt;                ///< MIDI note, absent without instrument data
  std::int64_t fineTune = 0;       ///< cents
  std::int64_t loopCount = 0;      ///< that the output keeps, if only as markers
  std::int64_t markerCount = 0;    ///< AIFF: in the output
  std::int64_t cuePointCount = 0;  ///< WAV: in the output
  bool isRestored = false;         ///< the output is what its input was made of, to the last byte
  /// What samples are.
  SampleEncoding encoding = SampleEncoding::integer;
};

/// "16-bit, stereo, 44100 Hz, root key 60 (+12 ct), 2 loops, 4 markers", with the encodingText of
/// samples that are not integers in place of the bits. Counts of 0 are left out.
std::string makeSummary(const Summary& summary, const Language& language);

/// "16-bit"
std::string bitDepthText(std::int64_t bits, const Language& language);

/// "16-bit PCM", "32-bit floating point", "A-law" or "µ-law"
std::string encodingText(SampleEncoding encoding, std::int64_t bits, const Language& language);

/// The short name by which programs know an encoding: "pcm", "float", "a-law" or "mu-law".
const char* encodingCode(SampleEncoding encoding);

/// "mono", "stereo", or "6 channels" for any other number, 0 and negative ones included.
std::string channelsText(std::int64_t count, const Language& language);

/// The short name by which programs know a warning, "loop-backward" for example. Never changes.
const char* warningCode(WarningKind kind);

/// The short name by which programs know a failure, "format-tag" for example. Never changes.
const char* errorCode(const ConversionError& error);

/// What stands in the text of a message for one of its values.
std::string messageValueText(const MessageValue& value, const Language& language);

/// The line that a person reads.
std::string warningText(const Warning& warning, const Language& language);

/// What names the chunks of a ConversionPlan that are left out, of which there is one at least.
Warning leftOutWarning(const std::vector<std::string>& ids);
/// The same where it is no warning: "Left out: chunks 'bext', 'LIST INFO'."
std::string leftOutText(const std::vector<std::string>& ids, const Language& language);

/// The message of a failed conversion.
std::string errorDescription(const ConversionError& error, const Language& language);

// The lines of the log. They hold names and texts as they are.

/// What a conversion came to, then a line for each warning.
std::vector<std::string> convertedLines(std::string_view inputName, std::string_view outputName,
                                        std::string_view summary,
                                        const std::vector<std::string>& warnings);

/// Why a file was not converted.
std::string failureLine(std::string_view inputName, std::string_view reason);

}  // namespace corvana
