#include "verify/compare_wav.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <tuple>

#include "verify/layout_proof.hpp"
#include "verify/pairs.hpp"
#include "verify/promised_wav.hpp"
#include "verify/sample_proof.hpp"
#include "vocabulary/messages.hpp"
#include "wav/wav_reader.hpp"

namespace corvana {
namespace {

using Kind = DifferenceKind;

constexpr ByteOrder order = ByteOrder::little;

/// The first records of a view: as many as are compared one by one, and more than are shown.
template <typename View>
auto firstRecords(const View& view, std::size_t promised) {
  std::vector<decltype(*view.begin())> records;
  for (const auto record : view) {
    if (records.size() > promised + maxDifferences) break;
    records.push_back(record);
  }
  return records;
}

void compareSound(const AiffInfo& aiff, const PromisedWav& promised, const WavInfo& wav,
                  Differences& differences) {
  const auto compare = [&](Kind kind, std::int64_t found, std::int64_t expected) {
    if (found != expected) differences.add({.kind = kind, .found = found, .expected = expected});
  };
  const std::uint64_t frameSize = std::uint64_t{wav.channels} * wav.bytesPerSample;
  const std::uint64_t frames = wav.dataSize / frameSize;
  compare(Kind::channels, wav.channels, aiff.channels);
  if (wav.encoding != aiff.encoding)
    differences.add({.kind = Kind::encoding,
                     .found = std::string(encodingCode(wav.encoding)),
                     .expected = std::string(encodingCode(aiff.encoding))});
  compare(Kind::sampleRate, wav.sampleRate, promised.sampleRate);
  compare(Kind::bitDepth, wav.bitsPerSample, aiff.sampleSize);
  compare(Kind::frameCount, static_cast<std::int64_t>(frames),
          static_cast<std::int64_t>(promised.frames));
  compare(Kind::soundSize, static_cast<std::int64_t>(wav.dataSize),
          static_cast<std::int64_t>(frames * frameSize));
}

// Loops and cue points.

void compareLoops(const PromisedWav& promised, const WavInfo& wav, ByteView output,
                  Differences& differences) {
  const SampleLoopView view = wav.loops.value_or(SampleLoopView());
  const std::vector<SampleLoop> loops = firstRecords(view, promised.loops.size());
  Pairs<SampleLoop, SampleLoop> pairs(promised.loops, loops);
  const auto place = [](const SampleLoop& loop) { return std::make_tuple(loop.start, loop.end); };
  const auto start = [](const SampleLoop& loop) { return loop.start; };
  const auto end = [](const SampleLoop& loop) { return loop.end; };
  const auto nothing = [](const SampleLoop&) { return 0; };
  pairs.pairBy(place, place);
  pairs.pairBy(start, start);
  pairs.pairBy(end, end);
  pairs.pairBy(nothing, nothing);

  const Fields sampler(lastChunk(output, order, "smpl").body, order);
  for (std::size_t i = 0; i < promised.loops.size(); ++i) {
    const auto number = static_cast<std::int64_t>(i + 1);
    const auto partner = pairs.partnerOf(i);
    if (!partner) {
      differences.add({.kind = Kind::loopMissing, .number = number});
      continue;
    }
    const auto compare = [&](Kind kind, std::int64_t found, std::int64_t expected) {
      if (found != expected)
        differences.add({.kind = kind, .number = number, .found = found, .expected = expected});
    };
    const SampleLoop& expected = promised.loops[i];
    const SampleLoop& found = loops[*partner];
    constexpr std::size_t fractionOffset = 16;
    compare(Kind::loopID, found.cueID, expected.cueID);
    compare(Kind::loopType, found.type, expected.type);
    compare(Kind::loopStart, found.start, expected.start);
    compare(Kind::loopEnd, found.end, expected.end);
    compare(Kind::loopPlayCount, found.playCount, expected.playCount);
    compare(Kind::loopFraction,
            sampler.u32(wav_layout::samplerHeaderSize + wav_layout::loopSize * *partner +
                        fractionOffset),
            0);
  }
  for (std::size_t i = 0; i < loops.size(); ++i)
    if (!pairs.isTaken(i))
      differences.add({.kind = Kind::loopExtra, .number = static_cast<std::int64_t>(i + 1)});
  differences.count += view.size() - loops.size();
}

void compareCuePoints(const PromisedWav& promised, const WavInfo& wav, Differences& differences) {
  const std::vector<CuePoint> points = firstRecords(wav.cuePoints, promised.cuePoints.size());
  Pairs<CuePoint, CuePoint> pairs(promised.cuePoints, points);
  const auto everything = [](const CuePoint& point) {
    return std::make_tuple(point.id, point.position);
  };
  const auto position = [](const CuePoint& point) { return point.position; };
  const auto id = [](const CuePoint& point) { return point.id; };
  pairs.pairBy(everything, everything);
  pairs.pairBy(position, position);
  pairs.pairBy(id, id);

  for (std::size_t i = 0; i < promised.cuePoints.size(); ++i) {
    const CuePoint& expected = promised.cuePoints[i];
    const auto partner = pairs.partnerOf(i);
    if (!partner) {
      differences.add({.kind = Kind::cuePointMissing,
                       .number = expected.id,
                       .expected = std::int64_t{expected.position}});
      continue;
    }
    const CuePoint& found = points[*partner];
    if (found.position != expected.position)
      differences.add({.kind = Kind::cuePointPosition,
                       .number = expected.id,
                       .found = std::int64_t{found.position},
                       .expected = std::int64_t{expected.position}});
    if (found.id != expected.id)
      differences.add({.kind = Kind::cuePointID,
                       .number = expected.id,
                       .found = std::int64_t{found.id},
                       .expected = std::int64_t{expected.id}});
  }
  for (std::size_t i = 0; i < points.size(); ++i)
    if (!pairs.isTaken(i))
      differences.add({.kind = Kind::cuePointExtra,
                       .number = points[i].id,
                       .found = std::int64_t{points[i].position}});
  differences.count += wav.cuePoints.size() - points.size();
}

// Instrument.

void compareInstrument(const PromisedWav& promised, const WavInfo& wav, Differences& differences) {
  if (promised.instrument && !wav.instrument) differences.add({.kind = Kind::instrumentMissing});
  if (!promised.instrument && wav.instrument) differences.add({.kind = Kind::instrumentExtra});
  if (!promised.instrument || !wav.instrument) return;
  const auto compare = [&](Kind kind, auto member) {
    const std::int64_t found = (*wav.instrument).*member;
    const std::int64_t expected = (*promised.instrument).*member;
    if (found != expected) differences.add({.kind = kind, .found = found, .expected = expected});
  };
  compare(Kind::rootKey, &InstrumentChunk::unshiftedNote);
  compare(Kind::tuning, &InstrumentChunk::fineTune);
  compare(Kind::gain, &InstrumentChunk::gain);
  compare(Kind::lowKey, &InstrumentChunk::lowNote);
  compare(Kind::highKey, &InstrumentChunk::highNote);
  compare(Kind::lowVelocity, &InstrumentChunk::lowVelocity);
  compare(Kind::highVelocity, &InstrumentChunk::highVelocity);
}

void compareSampler(const PromisedWav& promised, const WavInfo& wav, ByteView output,
                    Producer producer, Differences& differences) {
  if (promised.instrument && !wav.loops) differences.add({.kind = Kind::samplerMissing});
  if (!promised.instrument && wav.loops) differences.add({.kind = Kind::samplerExtra});
  if (!promised.instrument || !wav.loops) return;
  // Some programs round down; others leave the sample period out, which the rate tells as well.
  const bool isExact = producer == Producer::thisProgram;
  const auto compare = [&](Kind kind, std::int64_t found, std::int64_t expected, int tolerance) {
    if (std::abs(found - expected) > (isExact ? 0 : tolerance))
      differences.add({.kind = kind, .found = found, .expected = expected});
  };
  compare(Kind::unityNote, wav.midiUnityNote, promised.unityNote, 0);
  compare(Kind::pitchFraction, wav.midiPitchFraction, promised.pitchFraction, 1);
  const std::int64_t rate = promised.sampleRate;
  const std::uint32_t period = Fields(lastChunk(output, order, "smpl").body, order).u32(8);
  if (isExact || period != 0)
    compare(Kind::samplePeriod, period, (2'000'000'000 + rate) / (2 * rate), 1);
}

// The bytes.

bool isLegalMask(std::uint32_t mask, std::uint32_t promised, std::uint32_t channels) {
  if (mask == 0 || mask == promised) return true;
  return channels > 2 && std::popcount(mask) <= static_cast<int>(channels);
}

std::uint16_t promisedTag(SampleEncoding encoding) {
  constexpr std::array<std::uint16_t, 4> tags = {1, 3, 6, 7};
  return tags.at(static_cast<std::size_t>(encoding));
}

/// Samples that are not integers come with their number.
void compareFact(const WavInfo& wav, ByteView output, Producer producer, Differences& differences) {
  if (wav.encoding == SampleEncoding::integer) return;
  const Chunk fact = lastChunk(output, order, "fact");
  if (fact.id.empty()) return;
  const std::uint64_t frameSize = std::uint64_t{wav.channels} * wav.bytesPerSample;
  FieldProof(fact, order, differences).u32(0, static_cast<std::uint32_t>(wav.dataSize / frameSize));
  if (producer == Producer::thisProgram) compareChunkSize(fact, 4, differences);
}

/// What of the fmt chunk the reader passes over has to agree with what it reads.
void compareFormatChunk(const WavInfo& wav, const Chunk& chunk, Producer producer,
                        Differences& differences) {
  constexpr std::uint16_t extensionSize = 22;
  constexpr std::array<std::uint8_t, 14> pcmSubFormat = {0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80,
                                                         0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};
  const std::size_t size = chunk.body.size();
  const bool promisesExtension = wav.bitsPerSample % 8 != 0 || wav.channels > 2;
  FieldProof fields(chunk, order, differences);
  const bool isExtensible = fields.fields().u16(0) == format_tag::extensible;

  const std::uint32_t frameSize = wav.channels * wav.bytesPerSample;
  fields.u16(12, static_cast<std::uint16_t>(frameSize));
  fields.u32(8, wav.sampleRate * frameSize);
  const bool isExact = producer == Producer::thisProgram;
  if (isExact || isExtensible || bytesFor(fields.fields().u16(14)) != wav.bytesPerSample)
    fields.u16(14, static_cast<std::uint16_t>(8 * wav.bytesPerSample));
  if (isExact) {
    const bool isInteger = wav.encoding == SampleEncoding::integer;
    const std::size_t plainSize = isInteger ? 16 : 18;
    fields.u16(0, promisesExtension ? format_tag::extensible : promisedTag(wav.encoding));
    compareChunkSize(chunk, promisesExtension ? wav_layout::extensibleFormatSize : plainSize,
                     differences);
  }
  if (!isExtensible) {
    if (size > wav_layout::formatSize) fields.u16(16, static_cast<std::uint16_t>(size - 18));
    return;
  }
  const std::uint32_t mask = wav.channels == 1 ? 4 : wav.channels == 2 ? 3 : 0;
  fields.u16(16, extensionSize);
  if (isExact || !isLegalMask(fields.fields().u32(20), mask, wav.channels)) fields.u32(20, mask);
  fields.bytes(26, pcmSubFormat);
}

/// Fields that this program fills in one way only.
void compareUnreadFields(const Chunk& sampler, const Chunk& cue, Differences& differences) {
  FieldProof samplerFields(sampler, order, differences);
  for (const std::size_t offset : {0U, 4U, 20U, 24U, 32U})
    samplerFields.u32(offset, 0);
  FieldProof cueFields(cue, order, differences);
  constexpr std::array<std::uint8_t, 4> data = {'d', 'a', 't', 'a'};
  for (std::size_t point = wav_layout::cueHeaderSize;
       point + wav_layout::cuePointSize <= cue.body.size(); point += wav_layout::cuePointSize) {
    cueFields.u32(point + 4, cueFields.fields().u32(point + 20));
    cueFields.bytes(point + 8, data);
    cueFields.u32(point + 12, 0);
    cueFields.u32(point + 16, 0);
  }
}

void compareChunks(const PromisedWav& promised, const WavInfo& wav, ByteView output,
                   const ProofTerms& terms, Differences& differences) {
  compareLayout(output, order, {"fmt ", "data", "cue ", "smpl", "inst"}, differences);
  compareFormatChunk(wav, lastChunk(output, order, "fmt "), terms.producer, differences);
  compareFact(wav, output, terms.producer, differences);
  const Chunk sampler = lastChunk(output, order, "smpl");
  const Chunk cue = lastChunk(output, order, "cue ");
  if (!sampler.id.empty()) {
    const Fields fields(sampler.body, order);
    compareChunkSize(sampler,
                     wav_layout::samplerHeaderSize +
                         wav_layout::loopSize * std::uint64_t{fields.u32(28)} + fields.u32(32),
                     differences);
  }
  if (!cue.id.empty())
    compareChunkSize(cue,
                     wav_layout::cueHeaderSize +
                         wav_layout::cuePointSize * std::uint64_t{Fields(cue.body, order).u32(0)},
                     differences);
  if (const Chunk instrument = lastChunk(output, order, "inst"); !instrument.id.empty())
    compareChunkSize(instrument, wav_layout::instrumentSize, differences);
  if (terms.producer == Producer::anyProgram) return;

  std::vector<std::string_view> chunks = {"fmt ", "data"};
  if (wav.encoding != SampleEncoding::integer) chunks.insert(chunks.begin() + 1, "fact");
  if (!promised.cuePoints.empty()) chunks.emplace_back("cue ");
  if (promised.instrument) chunks.insert(chunks.end(), {"smpl", "inst"});
  for (const PromisedChunk& text : promised.texts)
    chunks.emplace_back(text.id);
  if (terms.options.reversible) chunks.emplace_back("crvn");
  compareChunkOrder(output, order, chunks, differences);
  compareUnreadFields(sampler, cue, differences);
}

}  // namespace

void compareOutput(const AiffInfo& aiff, ByteView input, ByteView output, const ProofTerms& terms,
                   Differences& differences, const ProofHandler& progress) {
  const WavInfo wav = parseWav(output, terms.options.anyEncoding);
  if (wav.order != order) throw ConversionError(ConversionError::Case::notRIFF);
  const PromisedWav promised = promisedWav(aiff, input, terms.options);
  compareSound(aiff, promised, wav, differences);
  compareLoops(promised, wav, output, differences);
  compareCuePoints(promised, wav, differences);
  compareInstrument(promised, wav, differences);
  compareSampler(promised, wav, output, terms.producer, differences);
  compareChunks(promised, wav, output, terms, differences);
  compareTexts(output, order, promised.texts, differences);

  const bool isInteger = aiff.encoding == SampleEncoding::integer;
  if (wav.channels != aiff.channels || wav.encoding != aiff.encoding) return;
  if (!isInteger && wav.bytesPerSample != promised.width) return;
  const SampleField from{input, aiff.soundOffset, promised.width,
                         aiff.littleEndian ? ByteOrder::little : ByteOrder::big, aiff.isUnsigned};
  const SampleField to{output, wav.dataOffset, wav.bytesPerSample, ByteOrder::little,
                       isInteger && wav.bytesPerSample == 1};
  const std::uint64_t there = wav.dataSize / (std::uint64_t{wav.channels} * wav.bytesPerSample);
  compareSamples(from, to,
                 {std::min(promised.frames, there), aiff.channels, promised.width, aiff.encoding},
                 differences, progress);
}

}  // namespace corvana
