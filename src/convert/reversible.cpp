#include "convert/reversible.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <variant>

#include "aiff/aiff_reader.hpp"
#include "aiff/aiff_texts.hpp"
#include "convert/capsule.hpp"
#include "convert/carry_out.hpp"
#include "convert/crc64.hpp"
#include "convert/left_out.hpp"
#include "convert/map_texts.hpp"
#include "convert/original.hpp"
#include "vocabulary/chunks.hpp"
#include "vocabulary/errors.hpp"
#include "wav/wav_reader.hpp"
#include "wav/wav_texts.hpp"

namespace corvana {
namespace {

/// Takes nothing but the sum of an output.
class SumSink : public ByteSink {
 public:
  void reserve(std::uint64_t) override {}
  void append(ByteView bytes) override { sum.add(bytes); }

  Crc64 sum;
};

std::uint64_t sumOfOutput(const ConversionPlan& plan, ByteView input) {
  SumSink sink;
  carryOut(plan, MemorySource(input), sink, {});
  return sink.sum.value();
}

/// What another program may have changed: the samples, and the bytes that the writer makes of the
/// records around them.
struct Evidence {
  SurroundingBytes around;
  ByteView samples;
  std::uint16_t channels = 0;
  std::uint32_t width = 0;  ///< bytes of a sample
};

ByteView part(ByteView file, std::uint64_t offset, std::uint64_t size) {
  return file.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(size));
}

Evidence evidenceOf(ByteView file, const AiffInfo& info) {
  // Written are whole numbers only.
  if (info.sampleRate != std::floor(info.sampleRate))
    throw ConversionError::unsupported(UnsupportedKind::sampleRate, {info.sampleRate});
  AiffContent content{.channels = info.channels,
                      .sampleSize = info.sampleSize,
                      .sampleRate = static_cast<std::uint32_t>(info.sampleRate),
                      .frameCount = info.frameCount,
                      .markers = info.markers,
                      .instrument = info.instrument,
                      .encoding = info.encoding};
  return {writeAiff(content), part(file, info.soundOffset, info.soundSize), info.channels,
          bytesFor(info.sampleSize)};
}

Evidence evidenceOf(ByteView file, const WavInfo& info) {
  WavContent content{.channels = info.channels,
                     .sampleSize = static_cast<std::uint16_t>(info.bitsPerSample),
                     .sampleRate = info.sampleRate,
                     .frameCount = static_cast<std::uint32_t>(
                         info.dataSize / (std::uint64_t{info.channels} * info.bytesPerSample)),
                     .encoding = info.encoding};
  WavMetadata& metadata = content.metadata;
  for (const CuePoint point : info.cuePoints)
    metadata.cuePoints.push_back(point);
  metadata.instrument = info.instrument;
  for (const SampleLoop loop : info.loops.value_or(SampleLoopView()))
    metadata.loops.push_back(loop);
  metadata.unityNote = info.midiUnityNote;
  metadata.pitchFraction = info.midiPitchFraction;
  return {writeWav(content), part(file, info.dataOffset, info.dataSize), info.channels,
          info.bytesPerSample};
}

/// Adds a text as far as it is read, and its end.
void addText(ByteView text, Crc64& sum) {
  constexpr std::uint8_t end = 0;
  sum.add(text.first(
      static_cast<std::size_t>(std::find(text.begin(), text.end(), end) - text.begin())));
  sum.add({&end, 1});
}

/// Adds whose text follows.
void addNumber(std::uint32_t number, Crc64& sum) {
  ByteBuffer bytes;
  appendInteger(bytes, number, ByteOrder::little);
  sum.add(bytes);
}

void addID(std::string_view id, Crc64& sum) {
  sum.add(ByteBuffer(id.begin(), id.end()));
}

/// Names and texts as a conversion would take them over, wherever and in whatever order they stand.
void addWavTexts(ByteView file, const Capsule& kept, Crc64& sum) {
  const WavTextViews texts = findWavTexts(file);
  if (kept.keepsNames)
    for (const auto* views : {&texts.labels, &texts.notes})
      for (const CueTextView& view : *views) {
        addNumber(view.cueID, sum);
        addText(view.text, sum);
      }
  if (!kept.keepsTexts) return;
  for (const InfoTextView& view : texts.info) {
    if (!hasCounterpart(view.id)) continue;
    addID(view.id, sum);
    addText(view.text, sum);
  }
  sum.add(texts.id3);
}

/// The same of an AIFF file.
void addAiffTexts(ByteView file, const Capsule& kept, Crc64& sum) {
  const AiffTextViews texts = findAiffTexts(file);
  for (const AiffCommentView& view : texts.comments) {
    if (view.marker == 0 ? !kept.keepsTexts : !kept.keepsNames) continue;
    addNumber(static_cast<std::uint16_t>(view.marker), sum);
    addText(view.text, sum);
  }
  if (!kept.keepsTexts) return;
  for (const AiffTextView& view : texts.texts) {
    addID(view.id, sum);
    addText(view.text, sum);
  }
  sum.add(texts.id3);
}

bool isAsWritten(const Evidence& found, ByteView file, bool isWAV, const Capsule& capsule) {
  if (found.channels != capsule.channels || found.width != capsule.conversion.outputWidth)
    return false;
  if (found.samples.size() != std::uint64_t{capsule.frameCount} * found.channels * found.width)
    return false;
  Crc64 sum;
  sum.add(found.around.header);
  if (capsule.hasLostBits()) sum.add(found.samples);
  sum.add(found.around.trailer);
  (isWAV ? addWavTexts : addAiffTexts)(file, capsule, sum);
  return sum.value() == capsule.outputSum;
}

/// The bytes around the samples without names and texts, which other programs write in many ways.
SurroundingBytes plainBytes(const ConversionPlan& plan) {
  if (const auto* wav = std::get_if<WavContent>(&plan.content)) {
    WavContent content = *wav;
    content.metadata.texts = {};
    return writeWav(content);
  }
  AiffContent content = std::get<AiffContent>(plan.content);
  content.texts = {};
  return writeAiff(content);
}

std::uint64_t outputSumOf(const ConversionPlan& plan, ByteView file, const Capsule& capsule) {
  const SurroundingBytes plain = plainBytes(plan);
  SumSink sink;
  sink.append(plain.header);
  if (capsule.hasLostBits()) {
    ConversionPlan samples;
    samples.samples = plan.samples;
    carryOut(samples, MemorySource(file), sink, {});
  }
  sink.append(plain.trailer);
  // All texts are behind the samples.
  ByteBuffer texts(plan.header.begin(), plan.header.begin() + fileHeaderSize);
  const std::uint64_t padByte = plan.samples.outputSize() % 2;
  appendBytes(texts, ByteView(plan.trailer).subspan(static_cast<std::size_t>(padByte)));
  (plan.makesWAV() ? addWavTexts : addAiffTexts)(texts, capsule, sink.sum);
  return sink.sum.value();
}

/// Of the samples in the output; of the capsule's where those have lost bits.
SampleRun originalSamples(ByteView file, const Evidence& found, const Capsule& capsule) {
  // What is done to the bytes of a sample undoes itself.
  SampleConversion conversion = capsule.conversion;
  if (capsule.hasLostBits()) conversion = {conversion.sourceWidth, conversion.sourceWidth, false};
  const ByteView samples = capsule.hasLostBits() ? capsule.samples : found.samples;
  return {.offset = static_cast<std::uint64_t>(samples.data() - file.data()),
          .frameCount = capsule.frameCount,
          .channels = capsule.channels,
          .conversion = conversion};
}

Evidence evidenceOf(ByteView file, bool isWAV) {
  // The highest rates of WAV are written, though an AIFF input must not have them.
  constexpr double rateLimit = 4'294'967'296.0;
  return isWAV ? evidenceOf(file, parseWav(file, true))
               : evidenceOf(file, parseAiff(file, true, rateLimit));
}

/// Absent where that is not what the file was made of.
std::optional<ConversionPlan> planOf(const Capsule& capsule, ByteView file, bool isWAV,
                                     const ConversionOptions& options) {
  Capsule expected = capsule;
  // What is to be kept now, and was added since, is an edit.
  expected.keepsNames = capsule.keepsNames || options.keepNames;
  expected.keepsTexts = capsule.keepsTexts || options.keepTexts;
  const Evidence found = evidenceOf(file, isWAV);
  if (!isAsWritten(found, file, isWAV, expected)) return std::nullopt;
  const std::optional<Summary> summary = summaryOfOriginal(capsule, !isWAV);
  if (!summary) return std::nullopt;
  ConversionPlan plan;
  if (isWAV)
    plan.content = AiffContent();
  else
    plan.content = WavContent();
  appendBytes(plan.header, capsule.prefix);
  plan.samples = originalSamples(file, found, capsule);
  appendBytes(plan.trailer, capsule.suffix);
  plan.summary = *summary;
  plan.summary.isRestored = true;
  if (sumOfOutput(plan, file) != capsule.originalSum) return std::nullopt;
  return plan;
}

/// What has been added to the file since, so that the original has nothing of it.
void setAdded(ByteView file, bool isWAV, const Capsule& capsule, std::uint64_t capsuleOffset,
              ConversionPlan& plan) {
  // Names and texts that were kept are as they were written.
  const ConversionOptions options{
      .reversible = true, .keepNames = capsule.keepsNames, .keepTexts = capsule.keepsTexts};
  LeftOutChunks added;
  (isWAV ? addLeftOutOfWav : addLeftOutOfAiff)(file, options, added, capsuleOffset);
  setLeftOut(added, options, plan);
}

}  // namespace

std::optional<ConversionPlan> planRestoring(ByteView file, bool isWAV,
                                            const ConversionOptions& options, Warnings& warnings) {
  std::optional<std::uint64_t> offset;
  const std::optional<Capsule> capsule = findCapsule(file, isWAV, offset);
  if (!offset) return std::nullopt;
  std::optional<ConversionPlan> plan;
  try {
    if (capsule) plan = planOf(*capsule, file, isWAV, options);
  } catch (const ConversionError&) {
    plan.reset();
  }
  if (plan)
    setAdded(file, isWAV, *capsule, *offset, *plan);
  else
    addWarning(warnings, WarningKind::editedSince);
  return plan;
}

void makeReversible(ConversionPlan& plan, ByteView file, const ConversionOptions& options) {
  const SampleRun& samples = plan.samples;
  const std::uint64_t sampleBytes = samples.frameCount * samples.sourceFrameSize();
  Capsule capsule{.frameCount = samples.frameCount,
                  .channels = static_cast<std::uint16_t>(samples.channels),
                  .conversion = samples.conversion,
                  .keepsNames = options.keepNames,
                  .keepsTexts = options.keepTexts,
                  .prefix = part(file, 0, samples.offset),
                  .suffix = file.subspan(static_cast<std::size_t>(samples.offset + sampleBytes))};
  Crc64 whole;
  whole.add(file);
  capsule.originalSum = whole.value();
  if (capsule.hasLostBits()) capsule.samples = part(file, samples.offset, sampleBytes);
  capsule.outputSum = outputSumOf(plan, file, capsule);
  const std::uint64_t withoutCapsule = plan.outputSize();
  const std::uint64_t most = std::numeric_limits<std::uint32_t>::max();
  const std::uint64_t payload =
      capsule.prefix.size() + capsule.suffix.size() + capsule.samples.size();
  constexpr std::uint64_t room = 1024;  // of what is around the payload
  if (withoutCapsule + payload + room > most)
    throw ConversionError(ConversionError::Case::tooLarge);
  appendCapsule(plan.trailer, capsule, plan.makesWAV());
  const auto size = static_cast<std::uint32_t>(plan.outputSize() - chunkHeaderSize);
  ByteBuffer field;
  appendInteger(field, size, plan.makesWAV() ? ByteOrder::little : ByteOrder::big);
  for (std::size_t i = 0; i < field.size(); ++i)
    plan.header.at(4 + i) = field[i];
}

}  // namespace corvana
