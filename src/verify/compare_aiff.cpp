#include "verify/compare_aiff.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>

#include "aiff/aiff_reader.hpp"
#include "verify/layout_proof.hpp"
#include "verify/pairs.hpp"
#include "verify/promised_aiff.hpp"
#include "verify/sample_proof.hpp"
#include "vocabulary/messages.hpp"

namespace corvana {
namespace {

using Kind = DifferenceKind;

constexpr ByteOrder order = ByteOrder::big;

/// The number in the 80 bits of an AIFF file.
ByteBuffer extendedBytes(std::uint32_t rate) {
  std::uint16_t exponent = 16383 + 63;
  std::uint64_t mantissa = rate;
  while (mantissa != 0 && mantissa >> 63 == 0) {
    mantissa <<= 1;
    --exponent;
  }
  ByteBuffer bytes;
  appendInteger(bytes, exponent, order);
  appendInteger(bytes, mantissa, order);
  return bytes;
}

MessageValue rateValue(double rate) {
  if (rate == std::floor(rate)) return static_cast<std::int64_t>(rate);
  return rate;
}

void compareSound(const WavInfo& wav, const PromisedAiff& promised, const AiffInfo& aiff,
                  ByteView output, Differences& differences) {
  const auto compare = [&](Kind kind, std::int64_t found, std::int64_t expected) {
    if (found != expected) differences.add({.kind = kind, .found = found, .expected = expected});
  };
  compare(Kind::channels, aiff.channels, wav.channels);
  if (aiff.encoding != wav.encoding)
    differences.add({.kind = Kind::encoding,
                     .found = std::string(encodingCode(aiff.encoding)),
                     .expected = std::string(encodingCode(wav.encoding))});
  compare(Kind::bitDepth, aiff.sampleSize, wav.bitsPerSample);
  compare(Kind::frameCount, aiff.frameCount, static_cast<std::int64_t>(promised.frames));
  if (aiff.sampleRate != wav.sampleRate) {
    differences.add({.kind = Kind::sampleRate,
                     .found = rateValue(aiff.sampleRate),
                     .expected = std::int64_t{wav.sampleRate}});
  } else {
    // What tells the same number in other bits has a sign, or bits that no double can hold.
    FieldProof(lastChunk(output, order, "COMM"), order, differences)
        .bytes(8, extendedBytes(wav.sampleRate));
  }
  const std::uint64_t frameSize = std::uint64_t{aiff.channels} * bytesFor(aiff.sampleSize);
  compare(Kind::soundSize, static_cast<std::int64_t>(aiff.soundSize),
          static_cast<std::int64_t>(aiff.frameCount * frameSize));
}

// Markers.

using MarkerPairs = Pairs<PromisedMarker, AiffMarker>;

MarkerPairs pairMarkers(const PromisedAiff& promised, const AiffInfo& aiff) {
  MarkerPairs pairs(promised.markers, aiff.markers);
  const auto everything = [](const auto& marker) {
    return std::make_tuple(marker.id, marker.position, marker.name);
  };
  const auto meaning = [](const auto& marker) {
    return std::make_tuple(marker.position, marker.name);
  };
  const auto id = [](const auto& marker) { return marker.id; };
  pairs.pairBy(everything, everything);
  pairs.pairBy(meaning, meaning);
  pairs.pairBy(id, id);
  return pairs;
}

Kind kindOfPosition(const PromisedMarker& marker) {
  if (marker.loop == 0) return Kind::markerPosition;
  return marker.isLoopEnd ? Kind::loopEnd : Kind::loopStart;
}

void compareMarkers(const PromisedAiff& promised, const AiffInfo& aiff, const MarkerPairs& pairs,
                    Differences& differences) {
  for (std::size_t i = 0; i < promised.markers.size(); ++i) {
    const PromisedMarker& expected = promised.markers[i];
    const auto partner = pairs.partnerOf(i);
    if (!partner) {
      differences.add({.kind = Kind::markerMissing,
                       .number = expected.id,
                       .expected = std::int64_t{expected.position}});
      continue;
    }
    const AiffMarker& found = aiff.markers[*partner];
    if (found.position != expected.position)
      differences.add({.kind = kindOfPosition(expected),
                       .number = expected.loop != 0 ? expected.loop : expected.id,
                       .found = std::int64_t{found.position},
                       .expected = std::int64_t{expected.position}});
    if (found.name != expected.name)
      differences.add({.kind = Kind::markerName,
                       .number = expected.id,
                       .found = found.name,
                       .expected = expected.name});
    if (found.id != expected.id)
      differences.add({.kind = Kind::markerID,
                       .number = expected.id,
                       .found = std::int64_t{found.id},
                       .expected = std::int64_t{expected.id}});
  }
  for (std::size_t i = 0; i < aiff.markers.size(); ++i)
    if (!pairs.isTaken(i))
      differences.add({.kind = Kind::markerExtra,
                       .number = aiff.markers[i].id,
                       .found = std::int64_t{aiff.markers[i].position}});
}

// Loops.

/// A loop's end of the INST chunk has to name a marker at the right place.
void compareLoopEnd(const PromisedAiff& promised, const AiffInfo& aiff, const MarkerPairs& pairs,
                    std::size_t marker, std::int16_t foundID, Differences& differences) {
  const PromisedMarker& expected = promised.markers[marker];
  // Of two markers with one ID the later one counts.
  const auto found = std::find_if(aiff.markers.rbegin(), aiff.markers.rend(),
                                  [&](const AiffMarker& other) { return other.id == foundID; });
  Difference difference{.kind = kindOfPosition(expected),
                        .number = expected.loop,
                        .found = std::string("–"),
                        .expected = std::int64_t{expected.position}};
  if (found != aiff.markers.rend()) {
    if (found->position == expected.position) return;
    // The marker is the right one, whose position has been found to differ.
    const auto partner = pairs.partnerOf(marker);
    if (partner && &aiff.markers[*partner] == &*found) return;
    difference.found = std::int64_t{found->position};
  }
  differences.add(std::move(difference));
}

void compareLoops(const PromisedAiff& promised, const AiffInfo& aiff, const MarkerPairs& pairs,
                  Differences& differences) {
  const AiffInstrument instrument = aiff.instrument.value_or(AiffInstrument());
  std::size_t index = 0;
  for (const AiffLoop& found : {instrument.sustainLoop, instrument.releaseLoop}) {
    const std::size_t place = index++;
    if (place >= promised.loops.size()) {
      if (found.playMode != 0)
        differences.add({.kind = Kind::loopExtra, .number = static_cast<std::int64_t>(place + 1)});
      continue;
    }
    const PromisedAiffLoop& expected = promised.loops[place];
    if (found.playMode == 0) {
      differences.add({.kind = Kind::loopMissing, .number = expected.number});
      continue;
    }
    if (found.playMode != expected.playMode)
      differences.add({.kind = Kind::loopType,
                       .number = expected.number,
                       .found = std::int64_t{found.playMode},
                       .expected = std::int64_t{expected.playMode}});
    compareLoopEnd(promised, aiff, pairs, expected.begin, found.beginMarker, differences);
    compareLoopEnd(promised, aiff, pairs, expected.end, found.endMarker, differences);
  }
}

// Instrument.

void compareInstrument(const PromisedAiff& promised, const AiffInfo& aiff,
                       Differences& differences) {
  if (promised.instrument && !aiff.instrument) differences.add({.kind = Kind::instrumentMissing});
  if (!promised.instrument && aiff.instrument) differences.add({.kind = Kind::instrumentExtra});
  if (!promised.instrument || !aiff.instrument) return;
  const auto compare = [&](Kind kind, auto member) {
    const std::int64_t found = (*aiff.instrument).*member;
    const std::int64_t expected = (*promised.instrument).*member;
    if (found != expected) differences.add({.kind = kind, .found = found, .expected = expected});
  };
  compare(Kind::rootKey, &AiffInstrument::baseNote);
  compare(Kind::tuning, &AiffInstrument::detune);
  compare(Kind::gain, &AiffInstrument::gain);
  compare(Kind::lowKey, &AiffInstrument::lowNote);
  compare(Kind::highKey, &AiffInstrument::highNote);
  compare(Kind::lowVelocity, &AiffInstrument::lowVelocity);
  compare(Kind::highVelocity, &AiffInstrument::highVelocity);
}

// The bytes.

/// Goes through the markers as they lie in the chunk: to its end, and over zero pad bytes.
void compareMarkerChunk(const Chunk& chunk, Differences& differences) {
  const Fields fields(chunk.body, order);
  const std::uint16_t count = fields.u16(0);
  std::size_t position = 2;
  for (std::uint16_t i = 0; i < count; ++i) {
    const std::size_t length = fields.u8(position + 6);
    position += 7 + length;
    if (length % 2 != 0) continue;
    const std::uint8_t pad = fields.u8(position);
    if (pad != 0)
      differences.add({.kind = Kind::padding,
                       .chunk = "MARK",
                       .found = std::int64_t{pad},
                       .expected = std::int64_t{0},
                       .offset = chunk.bodyOffset + position});
    ++position;
  }
  compareChunkSize(chunk, position, differences);
}

/// Fields that say nothing of the sound, but where samples start.
void compareUnreadFields(const PromisedAiff& promised, const AiffInfo& aiff, ByteView output,
                         Producer producer, Differences& differences) {
  const Chunk sound = lastChunk(output, order, "SSND");
  FieldProof soundFields(sound, order, differences);
  // Samples that are aligned to blocks start with one.
  const std::uint32_t blockSize = soundFields.fields().u32(4);
  const bool isExact = producer == Producer::thisProgram;
  if (isExact || (blockSize != 0 && aiff.soundOffset % blockSize != 0)) soundFields.u32(4, 0);
  if (!isExact) return;
  soundFields.u32(0, 0);
  const Chunk instrument = lastChunk(output, order, "INST");
  FieldProof loopFields(instrument, order, differences);
  constexpr std::size_t loopsOffset = 8;
  constexpr std::size_t loopSize = 6;
  for (std::size_t loop = promised.loops.size(); loop < 2; ++loop) {
    loopFields.u16(loopsOffset + loopSize * loop + 2, 0);
    loopFields.u16(loopsOffset + loopSize * loop + 4, 0);
  }
}

/// What this program says of samples that are not integers, behind the sample rate.
std::string_view promisedCompression(const WavInfo& wav) {
  switch (wav.encoding) {
    case SampleEncoding::integer:
      break;
    case SampleEncoding::floatingPoint:
      return wav.bytesPerSample == 8 ? "fl64\x15"
                                       "64-bit floating point"
                                     : "fl32\x15"
                                       "32-bit floating point";
    case SampleEncoding::aLaw:
      return {
          "alaw\x08"
          "ALaw 2:1\0",
          14};
    case SampleEncoding::muLaw:
      return {
          "ulaw\x08\xB5"
          "Law 2:1\0",
          14};
  }
  return {};
}

void compareCompression(const WavInfo& wav, ByteView output, Differences& differences) {
  const Chunk common = lastChunk(output, order, "COMM");
  const std::string_view promised = promisedCompression(wav);
  constexpr std::uint16_t bitsOfLogarithms = 16;
  FieldProof fields(common, order, differences);
  const bool isFloat = wav.encoding == SampleEncoding::floatingPoint;
  fields.u16(6, isFloat ? static_cast<std::uint16_t>(wav.bitsPerSample) : bitsOfLogarithms);
  fields.bytes(aiff_layout::commonSize,
               {reinterpret_cast<const std::uint8_t*>(promised.data()), promised.size()});
  compareChunkSize(common, aiff_layout::commonSize + promised.size(), differences);
}

void compareChunks(const WavInfo& wav, const PromisedAiff& promised, ByteView output,
                   const ProofTerms& terms, Differences& differences) {
  const std::string_view formType = Fields(output, order).id(8);
  compareLayout(output, order, {"COMM", "MARK", "INST", "SSND", "FVER"}, differences);
  if (const Chunk markers = lastChunk(output, order, "MARK"); !markers.id.empty())
    compareMarkerChunk(markers, differences);
  if (const Chunk instrument = lastChunk(output, order, "INST"); !instrument.id.empty())
    compareChunkSize(instrument, aiff_layout::instrumentSize, differences);
  if (formType == "AIFF") {
    compareChunkSize(lastChunk(output, order, "COMM"), aiff_layout::commonSize, differences);
  } else {
    constexpr std::uint32_t version = 0xA280'5140;
    const Chunk chunk = lastChunk(output, order, "FVER");
    if (chunk.body.size() != 4 || Fields(chunk.body, order).u32(0) != version)
      differences.add({.kind = Kind::formatVersion});
  }
  if (terms.producer == Producer::anyProgram) return;

  const bool isPlain = wav.encoding == SampleEncoding::integer;
  const std::string_view promisedType = isPlain ? "AIFF" : "AIFC";
  if (formType != promisedType)
    differences.add({.kind = Kind::formType,
                     .found = std::string(formType),
                     .expected = std::string(promisedType)});
  std::vector<std::string_view> chunks = {"COMM"};
  if (!isPlain) {
    chunks.insert(chunks.begin(), "FVER");
    compareCompression(wav, output, differences);
  }
  if (!promised.markers.empty()) chunks.emplace_back("MARK");
  if (promised.instrument) chunks.emplace_back("INST");
  chunks.emplace_back("SSND");
  for (const PromisedChunk& text : promised.texts)
    chunks.emplace_back(text.id);
  if (terms.options.reversible) chunks.emplace_back("APPL");
  compareChunkOrder(output, order, chunks, differences);
}

}  // namespace

void compareOutput(const WavInfo& wav, ByteView input, ByteView output, const ProofTerms& terms,
                   Differences& differences, const ProofHandler& progress) {
  // The highest rates of WAV are written, though an AIFF input must not have them.
  constexpr double rateLimit = 4'294'967'296.0;
  const AiffInfo aiff = parseAiff(output, terms.options.anyEncoding, rateLimit);
  const PromisedAiff promised = promisedAiff(wav, input, terms.options);
  compareSound(wav, promised, aiff, output, differences);
  const MarkerPairs pairs = pairMarkers(promised, aiff);
  compareLoops(promised, aiff, pairs, differences);
  compareMarkers(promised, aiff, pairs, differences);
  compareInstrument(promised, aiff, differences);
  compareChunks(wav, promised, output, terms, differences);
  compareUnreadFields(promised, aiff, output, terms.producer, differences);
  compareTexts(output, order, promised.texts, differences);

  const std::uint32_t width = bytesFor(aiff.sampleSize);
  const bool isInteger = wav.encoding == SampleEncoding::integer;
  if (aiff.channels != wav.channels || aiff.encoding != wav.encoding) return;
  if (!isInteger && width != wav.bytesPerSample) return;
  const SampleField from{input, wav.dataOffset, wav.bytesPerSample, wav.order,
                         isInteger && wav.bytesPerSample == 1};
  const SampleField to{output, aiff.soundOffset, width,
                       aiff.littleEndian ? ByteOrder::little : ByteOrder::big, aiff.isUnsigned};
  const std::uint64_t there = aiff.soundSize / (std::uint64_t{aiff.channels} * width);
  compareSamples(from, to,
                 {std::min(promised.frames, there), wav.channels, promised.width, wav.encoding},
                 differences, progress);
}

}  // namespace corvana
