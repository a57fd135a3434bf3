// The one enumeration of the engine's failures.
#pragma once

#include <exception>
#include <string>
#include <vector>

#include "vocabulary/warnings.hpp"

namespace corvana {

/// What exactly a format has that cannot be converted.
enum class UnsupportedKind {
  tooShort,     ///< fewer bytes than a file header
  unknownFile,  ///< neither WAV nor AIFF
  floatingPointWav,
  formatTag,    ///< the tag of a WAV file
  bitDepth,     ///< bits per sample
  channels,     ///< number of channels
  compression,  ///< the compression type of an AIFF-C file
  sampleRate,   ///< Hz
};

/// The failure of one conversion. System failures are std::system_error instead.
class ConversionError : public std::exception {
 public:
  /// What went wrong.
  enum class Case {
    unsupported,  ///< with an UnsupportedKind and its value
    writeFailed,  ///< with the path of the output file and the system's error number
    notRIFF,
    notWAVE,
    badFormatChunk,
    missingFormat,
    missingData,
    notAIFF,
    missingComm,
    missingSound,
    tooLarge,
  };

  /// A case without a detail.
  explicit ConversionError(Case kind) : kind_(kind) {}
  /// `values` as listed at the kind.
  static ConversionError unsupported(UnsupportedKind kind, std::vector<MessageValue> values = {});
  /// `errorNumber` is the system's.
  static ConversionError writeFailed(std::string path, int errorNumber);

  /// What went wrong; the functions below say more of some cases.
  Case kind() const { return kind_; }
  /// Of unsupported.
  UnsupportedKind unsupportedKind() const { return unsupportedKind_; }
  /// Of unsupported: as listed at its kind. Of writeFailed: path and error number.
  const std::vector<MessageValue>& values() const { return values_; }

  /// The errorCode; errorDescription is what people read.
  const char* what() const noexcept override;

 private:
  Case kind_;
  UnsupportedKind unsupportedKind_{};
  std::vector<MessageValue> values_;
};

}  // namespace corvana
