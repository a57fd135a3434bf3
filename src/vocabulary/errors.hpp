// The one enumeration of the engine's failures.
#pragma once

#include <exception>
#include <filesystem>
#include <string>

namespace corvana {

/// The failure of one conversion. System failures are std::system_error instead.
class ConversionError : public std::exception {
 public:
  enum class Case {
    unsupported,  ///< with a detail text
    writeFailed,  ///< with the path of the output file
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

  /// A case without a text.
  explicit ConversionError(Case kind);
  /// `detail` is already localised.
  static ConversionError unsupported(const std::string& detail);
  static ConversionError writeFailed(const std::filesystem::path& output);

  Case kind() const { return kind_; }
  /// The localised message. Unlike what() it keeps zero bytes of the detail.
  const std::string& errorDescription() const { return description_; }
  const char* what() const noexcept override { return description_.c_str(); }

 private:
  ConversionError(Case kind, const std::string& text);

  Case kind_;
  std::string description_;
};

}  // namespace corvana
