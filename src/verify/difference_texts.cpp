#include "verify/difference_texts.hpp"

#include <vector>

#include "vocabulary/messages.hpp"
#include "vocabulary/text_format.hpp"

namespace corvana {
namespace {

MessageForm formOfSound(DifferenceKind kind) {
  switch (kind) {
    case DifferenceKind::channels:
      return {"channels", translatable("Channels: %@ instead of %@.")};
    case DifferenceKind::sampleRate:
      return {"sample-rate", translatable("Sample rate: %@ Hz instead of %@ Hz.")};
    case DifferenceKind::encoding:
      return {"encoding", translatable("Encoding: %@ instead of %@.")};
    case DifferenceKind::bitDepth:
      return {"bit-depth", translatable("Bits per sample: %@ instead of %@.")};
    case DifferenceKind::frameCount:
      return {"frame-count", translatable("Frames: %@ instead of %@.")};
    case DifferenceKind::soundSize:
      return {"sound-size", translatable("Sample data: %@ bytes instead of %@.")};
    default:
      return {"sample",
              translatable("Frame %@, channel %@: sample %@ instead of %@ (at byte %@).")};
  }
}

MessageForm formOfLoops(DifferenceKind kind) {
  switch (kind) {
    case DifferenceKind::loopMissing:
      return {"loop-missing", translatable("Loop %@ is missing.")};
    case DifferenceKind::loopExtra:
      return {"loop-extra", translatable("Loop %@ is not in the input.")};
    case DifferenceKind::loopType:
      return {"loop-type", translatable("Loop %@: type %@ instead of %@.")};
    case DifferenceKind::loopStart:
      return {"loop-start", translatable("Loop %@: start %@ instead of %@.")};
    case DifferenceKind::loopEnd:
      return {"loop-end", translatable("Loop %@: end %@ instead of %@.")};
    case DifferenceKind::loopPlayCount:
      return {"loop-play-count", translatable("Loop %@: play count %@ instead of %@.")};
    case DifferenceKind::loopFraction:
      return {"loop-fraction", translatable("Loop %@: fraction %@ instead of %@.")};
    default:
      return {"loop-id", translatable("Loop %@: ID %@ instead of %@.")};
  }
}

MessageForm formOfPoints(DifferenceKind kind) {
  switch (kind) {
    case DifferenceKind::markerMissing:
      return {"marker-missing", translatable("Marker %@ (position %@) is missing.")};
    case DifferenceKind::markerExtra:
      return {"marker-extra", translatable("Marker %@ (position %@) is not in the input.")};
    case DifferenceKind::markerPosition:
      return {"marker-position", translatable("Marker %@: position %@ instead of %@.")};
    case DifferenceKind::markerName:
      return {"marker-name", translatable("Marker %@: name '%@' instead of '%@'.")};
    case DifferenceKind::markerID:
      return {"marker-id", translatable("Marker %@: ID %@ instead of %@.")};
    case DifferenceKind::cuePointMissing:
      return {"cue-point-missing", translatable("Cue point %@ (position %@) is missing.")};
    case DifferenceKind::cuePointExtra:
      return {"cue-point-extra", translatable("Cue point %@ (position %@) is not in the input.")};
    case DifferenceKind::cuePointPosition:
      return {"cue-point-position", translatable("Cue point %@: position %@ instead of %@.")};
    default:
      return {"cue-point-id", translatable("Cue point %@: ID %@ instead of %@.")};
  }
}

MessageForm formOfInstrument(DifferenceKind kind) {
  switch (kind) {
    case DifferenceKind::instrumentMissing:
      return {"instrument-missing", translatable("The instrument is missing.")};
    case DifferenceKind::instrumentExtra:
      return {"instrument-extra", translatable("The input has no instrument.")};
    case DifferenceKind::samplerMissing:
      return {"sampler-missing", translatable("The smpl chunk is missing.")};
    case DifferenceKind::samplerExtra:
      return {"sampler-extra", translatable("The input has nothing for a smpl chunk.")};
    case DifferenceKind::rootKey:
      return {"root-key", translatable("Root key: %@ instead of %@.")};
    case DifferenceKind::tuning:
      return {"tuning", translatable("Tuning: %@ ct instead of %@ ct.")};
    case DifferenceKind::gain:
      return {"gain", translatable("Gain: %@ dB instead of %@ dB.")};
    case DifferenceKind::lowKey:
      return {"low-key", translatable("Lowest key: %@ instead of %@.")};
    case DifferenceKind::highKey:
      return {"high-key", translatable("Highest key: %@ instead of %@.")};
    case DifferenceKind::lowVelocity:
      return {"low-velocity", translatable("Lowest velocity: %@ instead of %@.")};
    case DifferenceKind::highVelocity:
      return {"high-velocity", translatable("Highest velocity: %@ instead of %@.")};
    case DifferenceKind::unityNote:
      return {"unity-note", translatable("MIDI unity note: %@ instead of %@.")};
    case DifferenceKind::pitchFraction:
      return {"pitch-fraction", translatable("MIDI pitch fraction: %@ instead of %@.")};
    default:
      return {"sample-period", translatable("Sample period: %@ ns instead of %@ ns.")};
  }
}

MessageForm formOfLayout(DifferenceKind kind) {
  switch (kind) {
    case DifferenceKind::formType:
      return {"form-type", translatable("Form type: '%@' instead of '%@'.")};
    case DifferenceKind::formatVersion:
      return {"format-version", translatable("The FVER chunk of AIFF-C is missing or wrong.")};
    case DifferenceKind::containerSize:
      return {"container-size", translatable("Declared size of the file: %@ instead of %@.")};
    case DifferenceKind::chunkSize:
      return {"chunk-size", translatable("Chunk '%@': size %@ instead of %@ (at byte %@).")};
    case DifferenceKind::chunkTwice:
      return {"chunk-twice", translatable("There is more than one chunk '%@'.")};
    case DifferenceKind::chunkOrder:
      return {"chunk-order", translatable("Chunks: '%@' instead of '%@'.")};
    case DifferenceKind::chunkField:
      return {"chunk-field", translatable("Chunk '%@': field %@ instead of %@ (at byte %@).")};
    case DifferenceKind::chunkText:
      return {"chunk-text", translatable("Chunk '%@': byte %@ instead of %@ (at byte %@).")};
    case DifferenceKind::chunkMissing:
      return {"chunk-missing", translatable("The chunk '%@' is missing.")};
    case DifferenceKind::paddingMissing:
      return {"padding-missing", translatable("Chunk '%@': the pad byte is missing.")};
    case DifferenceKind::padding:
      return {"padding", translatable("Chunk '%@': pad byte %@ instead of %@ (at byte %@).")};
    case DifferenceKind::notRestored:
      return {"not-restored", translatable("The original does not come back, from byte %@ on.")};
    default:
      return {"stray-bytes", translatable("%@ bytes belong to no chunk.")};
  }
}

/// Of what a difference has, the text takes in this order: number, frame, channel, chunk, what was
/// found, what was expected, byte.
MessageForm formOf(DifferenceKind kind) {
  if (kind <= DifferenceKind::sample) return formOfSound(kind);
  if (kind <= DifferenceKind::loopID) return formOfLoops(kind);
  if (kind <= DifferenceKind::cuePointID) return formOfPoints(kind);
  if (kind <= DifferenceKind::samplePeriod) return formOfInstrument(kind);
  return formOfLayout(kind);
}

}  // namespace

const char* differenceCode(const Difference& difference) {
  return difference.reason ? errorCode(*difference.reason) : formOf(difference.kind).code;
}

std::string differenceText(const Difference& difference, const Language& language) {
  if (difference.reason)
    return fillText(language.localised("The output cannot be read: %@"),
                    {errorDescription(*difference.reason, language)});
  std::vector<std::string> texts;
  for (const auto& number : {difference.number, difference.frame, difference.channel})
    if (number) texts.push_back(decimalText(*number));
  if (!difference.chunk.empty()) texts.push_back(difference.chunk);
  for (const auto& value : {difference.found, difference.expected})
    if (value) texts.push_back(messageValueText(*value, language));
  if (difference.offset)
    texts.push_back(decimalText(static_cast<std::int64_t>(*difference.offset)));
  return fillText(language.localised(formOf(difference.kind).text),
                  std::vector<std::string_view>(texts.begin(), texts.end()));
}

std::string furtherDifferences(std::uint64_t count, const Language& language) {
  return language.localisedCount("%ld further difference.", "%ld further differences.",
                                 static_cast<std::int64_t>(count));
}

}  // namespace corvana
