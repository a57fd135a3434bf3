#include "vocabulary/messages.hpp"

#include <algorithm>
#include <utility>

#include "vocabulary/text_format.hpp"

namespace corvana {
namespace {

MessageForm formOf(WarningKind kind) {
  switch (kind) {
    case WarningKind::incompleteFrame:
      return {"incomplete-frame", translatable("Incomplete last frame discarded.")};
    case WarningKind::invalidLoop:
      return {"loop-invalid", translatable("Loop %@ is invalid (start %@, end %@) – skipped.")};
    case WarningKind::backwardLoop:
      return {"loop-backward",
              translatable("Loop %@: AIFF has no backward loops – converted to a forward loop.")};
    case WarningKind::unknownLoopType:
      return {"loop-type",
              translatable("Loop %@: unknown loop type %@ – converted to a forward loop.")};
    case WarningKind::playCount:
      return {"play-count",
              translatable("Loop %@: a play count of %@ cannot be stored in AIFF (the loop "
                           "plays indefinitely).")};
    case WarningKind::loopsBeyondTwo:
      return {"loops-beyond-two",
              translatable("AIFF supports only 2 loops (sustain/release) – loop 3 and "
                           "above are kept as markers only.")};
    case WarningKind::shortSoundData:
      return {"sound-data-short",
              translatable("The SSND chunk contains less data than declared – %@ instead of %@ "
                           "frames used.")};
    case WarningKind::roundedRate:
      return {"rate-rounded",
              translatable("Sample rate of %@ Hz rounded to %@ Hz (WAV only supports whole "
                           "numbers).")};
    case WarningKind::unknownPlayMode:
      return {"play-mode", translatable("%@: unknown play mode %@ – converted to a forward loop.")};
    case WarningKind::missingMarkers:
      return {"loop-markers-missing",
              translatable("%@: the associated markers are missing – skipped.")};
    case WarningKind::invalidLoopRole:
      return {"loop-invalid", translatable("%@ is invalid (start %@, end %@) – skipped.")};
    case WarningKind::clampedGain:
      return {"gain-clamped",
              translatable("A gain of %@ dB does not fit into the WAV inst chunk – clamped.")};
    case WarningKind::rootFromName:
      return {"root-from-name", translatable("Root key %@ is taken from the file's name.")};
    case WarningKind::editedSince:
      return {"edited-since",
              translatable(
                  "Edited or damaged since it was converted – converted by the ordinary rules.")};
    case WarningKind::nameCharacters:
      return {"name-characters",
              translatable("Names with characters that AIFF lacks: %@ (first: ID %@) – such "
                           "characters are replaced by '?'.")};
    case WarningKind::longNames:
      return {"name-too-long",
              translatable("Names or notes longer than AIFF holds: %@ (first: ID %@) – cut.")};
    case WarningKind::namesLeftOut:
      return {"names-left-out",
              translatable("Names or notes without a place in the output: %@ (first: ID %@) – left "
                           "out.")};
    case WarningKind::leftOut:
      return {"left-out", ""};  // leftOutText
    case WarningKind::moreWarnings:
      return {"more-warnings", ""};  // warningText
  }
  return {"", ""};
}

MessageForm formOf(UnsupportedKind kind) {
  switch (kind) {
    case UnsupportedKind::tooShort:
      return {"file-too-short", translatable("file is too short")};
    case UnsupportedKind::unknownFile:
      return {"unknown-file", translatable("neither WAV nor AIFF")};
    case UnsupportedKind::floatingPointWav:
      return {"floating-point", translatable("floating-point WAV")};
    case UnsupportedKind::formatTag:
      return {"format-tag", translatable("format tag %@")};
    case UnsupportedKind::bitDepth:
      return {"bit-depth", translatable("%@-bit")};
    case UnsupportedKind::channels:
      return {"channels", ""};  // channelsText
    case UnsupportedKind::compression:
      return {"compression", translatable("AIFF-C with compression '%@'")};
    case UnsupportedKind::sampleRate:
      return {"sample-rate", translatable("sample rate %@")};
  }
  return {"", ""};
}

MessageForm formOf(ConversionError::Case kind) {
  using Case = ConversionError::Case;
  switch (kind) {
    case Case::unsupported:
      return {"unsupported", translatable("Unsupported format: %@")};
    case Case::writeFailed:
      return {"write-failed", translatable("Writing failed: %@")};
    case Case::notRIFF:
      return {"not-riff", translatable("Not a RIFF file.")};
    case Case::notWAVE:
      return {"not-wave", translatable("The RIFF file is not a WAVE file.")};
    case Case::badFormatChunk:
      return {"format-chunk-damaged", translatable("The fmt chunk is damaged.")};
    case Case::missingFormat:
      return {"format-chunk-missing", translatable("The fmt chunk is missing.")};
    case Case::missingData:
      return {"data-chunk-missing", translatable("The data chunk is missing.")};
    case Case::notAIFF:
      return {"not-aiff", translatable("Not an AIFF file.")};
    case Case::missingComm:
      return {"common-chunk-missing", translatable("The COMM chunk is missing or damaged.")};
    case Case::missingSound:
      return {"sound-chunk-missing", translatable("The SSND chunk is missing.")};
    case Case::tooLarge:
      return {"too-large", translatable("The file is too large (max. 4 GB).")};
  }
  return {"", ""};
}

std::string fill(const char* form, const std::vector<MessageValue>& values,
                 const Language& language) {
  std::vector<std::string> texts;
  texts.reserve(values.size());
  for (const MessageValue& value : values)
    texts.push_back(messageValueText(value, language));
  return fillText(language.localised(form),
                  std::vector<std::string_view>(texts.begin(), texts.end()));
}

/// What the message of an unsupported format says of it.
std::string detailText(const ConversionError& error, const Language& language) {
  if (error.unsupportedKind() == UnsupportedKind::channels)
    return channelsText(std::get<std::int64_t>(error.values().at(0)), language);
  return fill(formOf(error.unsupportedKind()).text, error.values(), language);
}

std::string leftOutText(const std::vector<MessageValue>& values, const Language& language) {
  std::string ids;
  std::string further;
  for (const MessageValue& value : values) {
    if (const auto* id = std::get_if<std::string>(&value))
      ids += (ids.empty() ? "'" : ", '") + *id + "'";
    else
      further = decimalText(std::get<std::int64_t>(value));
  }
  if (further.empty()) return fillText(language.localised("Left out: chunks %@."), {ids});
  return fillText(language.localised("Left out: chunks %1$@ and %2$@ more."), {ids, further});
}

}  // namespace

const char* warningCode(WarningKind kind) {
  return formOf(kind).code;
}

const char* errorCode(const ConversionError& error) {
  const bool isUnsupported = error.kind() == ConversionError::Case::unsupported;
  return isUnsupported ? formOf(error.unsupportedKind()).code : formOf(error.kind()).code;
}

std::string makeSummary(const Summary& summary, const Language& language) {
  std::string line = summary.encoding == SampleEncoding::integer
                         ? bitDepthText(summary.bits, language)
                         : encodingText(summary.encoding, summary.bits, language);
  const auto add = [&line](const std::string& part) { line += ", " + part; };
  add(channelsText(summary.channels, language));
  add(decimalText(std::int64_t{summary.sampleRate}) + " Hz");
  if (summary.rootKey) {
    add(fillText(language.localised("root key %@"), {decimalText(*summary.rootKey)}));
    if (summary.fineTune != 0)
      line += (summary.fineTune > 0 ? " (+" : " (") + decimalText(summary.fineTune) + " ct)";
  }
  if (summary.loopCount >= 1)
    add(language.localisedCount("%ld loop", "%ld loops", summary.loopCount));
  if (summary.markerCount >= 1)
    add(language.localisedCount("%ld marker", "%ld markers", summary.markerCount));
  if (summary.cuePointCount >= 1)
    add(language.localisedCount("%ld cue point", "%ld cue points", summary.cuePointCount));
  if (summary.isRestored) add(language.localised("restored to the last byte"));
  return line;
}

std::string bitDepthText(std::int64_t bits, const Language& language) {
  return fillText(language.localised("%@-bit"), {decimalText(bits)});
}

std::string encodingText(SampleEncoding encoding, std::int64_t bits, const Language& language) {
  switch (encoding) {
    case SampleEncoding::integer:
      break;
    case SampleEncoding::floatingPoint:
      return fillText(language.localised(translatable("%@ floating point")),
                      {bitDepthText(bits, language)});
    case SampleEncoding::aLaw:
      return "A-law";
    case SampleEncoding::muLaw:
      return "µ-law";
  }
  return bitDepthText(bits, language) + " PCM";
}

const char* encodingCode(SampleEncoding encoding) {
  switch (encoding) {
    case SampleEncoding::integer:
      break;
    case SampleEncoding::floatingPoint:
      return "float";
    case SampleEncoding::aLaw:
      return "a-law";
    case SampleEncoding::muLaw:
      return "mu-law";
  }
  return "pcm";
}

std::string channelsText(std::int64_t count, const Language& language) {
  if (count == 1) return language.localised("mono");
  if (count == 2) return language.localised("stereo");
  return language.localisedCount("%ld channel", "%ld channels", count);
}

std::string messageValueText(const MessageValue& value, const Language& language) {
  struct {
    const Language& language;
    std::string operator()(std::int64_t number) const { return decimalText(number); }
    std::string operator()(double number) const { return decimalText(number); }
    std::string operator()(LoopRole role) const {
      return role == LoopRole::sustain ? language.localised("Sustain loop")
                                       : language.localised("Release loop");
    }
    std::string operator()(const std::string& characters) const { return characters; }
  } const text{language};
  return std::visit(text, value);
}

std::string warningText(const Warning& warning, const Language& language) {
  if (warning.kind == WarningKind::moreWarnings)
    return language.localisedCount("%ld further warning.", "%ld further warnings.",
                                   std::get<std::int64_t>(warning.values.at(0)));
  if (warning.kind == WarningKind::leftOut) return leftOutText(warning.values, language);
  return fill(formOf(warning.kind).text, warning.values, language);
}

std::string leftOutText(const std::vector<std::string>& ids, const Language& language) {
  return warningText(leftOutWarning(ids), language);
}

Warning leftOutWarning(const std::vector<std::string>& ids) {
  const std::size_t shown = std::min(ids.size(), maxShownLeftOut);
  Warning warning{WarningKind::leftOut, {ids.begin(), ids.begin() + std::ptrdiff_t(shown)}};
  if (ids.size() > shown)
    warning.values.emplace_back(static_cast<std::int64_t>(ids.size() - shown));
  return warning;
}

std::string errorDescription(const ConversionError& error, const Language& language) {
  const MessageForm form = formOf(error.kind());
  if (error.kind() == ConversionError::Case::unsupported)
    return fillText(language.localised(form.text), {detailText(error, language)});
  return fill(form.text, error.values(), language);
}

std::vector<std::string> convertedLines(std::string_view inputName, std::string_view outputName,
                                        std::string_view summary,
                                        const std::vector<std::string>& warnings) {
  std::string line(inputName);
  line.append(" => ").append(outputName).append("  [").append(summary) += ']';
  std::vector<std::string> lines = {std::move(line)};
  lines.reserve(1 + warnings.size());
  for (const std::string& warning : warnings)
    lines.push_back("   ⚠\uFE0E " + warning);
  return lines;
}

std::string failureLine(std::string_view inputName, std::string_view reason) {
  return std::string("✗ ").append(inputName).append(": ").append(reason);
}

}  // namespace corvana
