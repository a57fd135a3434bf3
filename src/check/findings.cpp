#include "check/findings.hpp"

#include "vocabulary/messages.hpp"
#include "vocabulary/text_format.hpp"

namespace corvana {
namespace {

MessageForm formOf(FindingKind kind) {
  switch (kind) {
    case FindingKind::containerSize:
      return {"container-size",
              translatable("By its header the file has %@ bytes, in fact it has %@.")};
    case FindingKind::chunkBeyondFile:
      return {"chunk-beyond-file",
              translatable("Chunk '%@' at %@ declares %@ bytes, of which the file holds %@.")};
    case FindingKind::chunkID:
      return {"chunk-id", translatable("At %@ there is no chunk where one should begin.")};
    case FindingKind::chunkDoubled:
      return {"chunk-doubled",
              translatable("Chunk '%@' at %@ occurs once more; the last one counts.")};
    case FindingKind::chunkTooShort:
      return {"chunk-too-short",
              translatable("Chunk '%@' at %@ is too short to be read: %@ bytes, at least %@ are "
                           "needed.")};
    case FindingKind::countBeyondChunk:
      return {"count-beyond-chunk",
              translatable("Chunk '%@' at %@ declares %@ records and holds %@.")};
    case FindingKind::paddingMissing:
      return {"chunk-padding-missing",
              translatable("Chunk '%@' at %@ has an odd size and no pad byte behind it.")};
    case FindingKind::paddingNotZero:
      return {"chunk-padding-not-zero",
              translatable("The pad byte behind chunk '%@' at %@ is not zero.")};
    case FindingKind::trailingBytes:
      return {"trailing-bytes",
              translatable("Bytes behind the last chunk that belong to none: %@.")};
    case FindingKind::frameSize:
      return {"frame-size",
              translatable("A frame is to take %@ bytes, its samples need %@ by their bits.")};
    case FindingKind::wholeFrames:
      return {"data-not-whole-frames",
              translatable("The samples do not fill their last frame: %@ bytes are left over.")};
    case FindingKind::frameCount:
      return {"frame-count", translatable("COMM declares %@ frames, SSND holds %@.")};
    case FindingKind::loopBehindData:
      return {"loop-behind-data",
              translatable("%@ lies behind the samples: frames %@ to %@, the last one is %@.")};
    case FindingKind::loopEndExclusive:
      return {"loop-end-exclusive",
              translatable("%@ ends at frame %@, the number of frames; the last one is %@. Ends "
                           "belong to the loop.")};
    case FindingKind::loopEmpty:
      return {"loop-empty", translatable("%@ is empty: frames %@ to %@.")};
    case FindingKind::loopOverlap:
      return {"loop-overlap",
              translatable("%@ overlaps the loop that starts at frame %@, and neither lies inside "
                           "the other.")};
    case FindingKind::loopType:
      return {"loop-type", translatable("%@ is of the unknown type %@.")};
    case FindingKind::loopMarkerMissing:
      return {"loop-marker-missing", translatable("%@ refers to marker %@, which is not there.")};
    case FindingKind::loopSeam:
      return {"loop-seam",
              translatable("%@ jumps at its seam by %@ of full scale; the steps around are %@ at "
                           "most.")};
    case FindingKind::notChecked:
      return {"not-checked",
              translatable("Further chunks, loops or markers, which were not looked at: %@.")};
    case FindingKind::markerDoubled:
      return {"marker-id-doubled", translatable("More than one marker has the ID %@.")};
    case FindingKind::markerID:
      return {"marker-id", translatable("%@ is not a valid marker ID; they begin at 1.")};
    case FindingKind::markerBehindData:
      return {"marker-behind-data",
              translatable("Marker %@ at frame %@ lies behind the samples: there are %@ frames.")};
    case FindingKind::strayLabel:
      return {"label-without-marker",
              translatable("A text belongs to cue point %@, which is not there.")};
    case FindingKind::tuningsDisagree:
      return {"tunings-disagree", translatable("smpl and inst disagree by %@ ct.")};
    case FindingKind::rootKey:
      return {"root-key", translatable("%@: root key %@ is not between 0 and 127.")};
    case FindingKind::fineTune:
      return {"fine-tune", translatable("%@: a fine tune of %@ ct is not between -50 and 50.")};
    case FindingKind::keyRange:
      return {"key-range", translatable("Keys from %@ to %@ are no range of MIDI notes.")};
    case FindingKind::velocityRange:
      return {"velocity-range",
              translatable("Velocities from %@ to %@ are no range of MIDI velocities.")};
    case FindingKind::moreFindings:
      return {"more-findings", translatable("Further findings: %@.")};
  }
  return {"", ""};
}

std::string loopText(const LoopName& loop, const Language& language) {
  if (const auto* role = std::get_if<LoopRole>(&loop)) return messageValueText(*role, language);
  return fillText(language.localised("Loop %@"), {decimalText(std::get<std::int64_t>(loop))});
}

}  // namespace

const char* findingCode(const Finding& finding) {
  if (const auto* error = std::get_if<ConversionError>(&finding.what)) return errorCode(*error);
  return formOf(std::get<FindingKind>(finding.what)).code;
}

const char* severityCode(Severity severity) {
  constexpr const char* codes[] = {"note", "warning", "error"};
  return codes[static_cast<std::size_t>(severity)];
}

std::string findingText(const Finding& finding, const Language& language) {
  if (const auto* error = std::get_if<ConversionError>(&finding.what))
    return errorDescription(*error, language);
  std::vector<std::string> texts;
  if (finding.loop) texts.push_back(loopText(*finding.loop, language));
  for (const MessageValue& value : finding.values)
    texts.push_back(messageValueText(value, language));
  return fillText(language.localised(formOf(std::get<FindingKind>(finding.what)).text),
                  std::vector<std::string_view>(texts.begin(), texts.end()));
}

}  // namespace corvana
