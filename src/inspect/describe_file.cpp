#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include "aiff/aiff_reader.hpp"
#include "aiff/aiff_texts.hpp"
#include "aiff/extended80.hpp"
#include "inspect/file_description.hpp"
#include "inspect/texts.hpp"
#include "wav/wav_reader.hpp"

namespace corvana {
namespace {

/// What the texts of a LIST chunk say of one cue point.
struct Label {
  std::string name, note;
  std::optional<std::uint32_t> length;
};

void addText(FileDescription& file, std::string_view chunk, std::string text) {
  if (text.empty()) return;
  ++file.textCount;
  if (file.texts.size() < maxTexts) file.texts.push_back({std::string(chunk), std::move(text)});
}

SampleKind kindOfTag(std::uint16_t tag) {
  switch (tag) {
    case format_tag::pcm:
      return SampleKind::integer;
    case format_tag::floatingPoint:
      return SampleKind::floatingPoint;
    case format_tag::aLaw:
      return SampleKind::aLaw;
    case format_tag::muLaw:
      return SampleKind::muLaw;
    case 0:
      return SampleKind::unknown;
    default:
      return SampleKind::compressed;
  }
}

/// As the reader understands it, but of any kind of samples, and in either byte order.
std::optional<SoundFormat> describeWavFormat(ByteView body, ByteOrder order) {
  if (body.size() < wav_layout::formatSize) return std::nullopt;
  const Fields fields(body, order);
  SoundFormat format;
  format.order = order;
  format.formatTag = fields.u16(0);
  format.channels = fields.u16(2);
  format.sampleRate = fields.u32(4);
  format.bits = fields.u16(14);
  std::uint32_t frameBytes = fields.u16(12);
  if (frameBytes == 0) frameBytes = bytesFor(format.bits) * format.channels;
  if (format.formatTag == format_tag::extensible &&
      body.size() >= wav_layout::extensibleFormatSize) {
    if (fields.u16(18) != 0) format.bits = fields.u16(18);
    format.formatTag = subFormatOf(body, order);
  }
  format.kind = kindOfTag(format.formatTag);
  const bool hasEqualSamples =
      format.kind != SampleKind::compressed && format.kind != SampleKind::unknown;
  if (hasEqualSamples && format.channels != 0 && frameBytes % format.channels == 0) {
    format.sampleBytes = frameBytes / format.channels;
    if (format.kind == SampleKind::integer && format.sampleBytes != 0)
      format.bits = std::min(format.bits, 8 * format.sampleBytes);
  }
  format.isUnsigned = format.kind == SampleKind::integer && format.sampleBytes == 1;
  return format;
}

LoopKind kindOfLoopType(std::uint32_t type) {
  switch (type) {
    case loop_type::forward:
      return LoopKind::forward;
    case loop_type::alternating:
      return LoopKind::alternating;
    case loop_type::backward:
      return LoopKind::backward;
    default:
      return LoopKind::unknown;
  }
}

void describeSampler(ByteView body, ByteOrder order, FileDescription& file) {
  constexpr std::size_t fractionOffset = 16;
  file.sampler.reset();
  file.loops.clear();
  file.loopCount = 0;
  const SamplerChunk sampler = parseSamplerChunk(body, order);
  if (!sampler.loops) return;
  file.sampler = {sampler.midiUnityNote, sampler.midiPitchFraction};
  file.loopCount = sampler.loops->size();
  std::size_t record = wav_layout::samplerHeaderSize;
  for (const SampleLoop loop : *sampler.loops) {
    if (file.loops.size() == maxListed) break;
    LoopDescription described;
    described.number = std::ssize(file.loops) + 1;
    described.kind = kindOfLoopType(loop.type);
    described.type = loop.type;
    described.start = loop.start;
    described.end = loop.end;
    described.playCount = loop.playCount;
    described.cueID = loop.cueID;
    described.fraction = Fields(body, order).u32(record + fractionOffset);
    file.loops.push_back(described);
    record += wav_layout::loopSize;
  }
}

void describeCuePoints(ByteView body, ByteOrder order, FileDescription& file) {
  const CuePointView points = parseCueChunk(body, order);
  file.cuePoints.clear();
  file.markerCount = points.size();
  for (const CuePoint point : points) {
    if (file.cuePoints.size() == maxListed) break;
    file.cuePoints.push_back({.id = point.id, .position = point.position});
  }
}

/// The chunks inside a LIST chunk: texts of the file, or of its cue points.
void describeList(ByteView body, ByteOrder order, FileDescription& file,
                  std::map<std::uint32_t, Label>& labels) {
  constexpr std::size_t idSize = wav_layout::cueTextOffset;
  constexpr std::size_t stretchSize = wav_layout::stretchTextOffset;
  const std::string_view type = Fields(body, order).id(0);
  std::uint64_t position = wav_layout::listTypeSize;
  while (const auto chunk = chunkAt(body, order, position)) {
    position = chunk->bodyOffset + std::uint64_t{chunk->declaredSize} + chunk->declaredSize % 2;
    if (type == "INFO") addText(file, chunk->id, wavText(chunk->body));
    if (type != "adtl" || chunk->body.size() < idSize || labels.size() == maxListed) continue;
    const Fields fields(chunk->body, order);
    if (chunk->id == "labl") {
      labels[fields.u32(0)].name = wavText(chunk->body.subspan(idSize));
    } else if (chunk->id == "note") {
      labels[fields.u32(0)].note = wavText(chunk->body.subspan(idSize));
    } else if (chunk->id == "ltxt" && chunk->body.size() >= stretchSize) {
      Label& label = labels[fields.u32(0)];
      label.length = fields.u32(4);
      std::string text = wavText(chunk->body.subspan(stretchSize));
      if (label.name.empty()) label.name = std::move(text);
    }
  }
}

void nameCuePoints(const std::map<std::uint32_t, Label>& labels, FileDescription& file) {
  std::set<std::uint32_t> used;
  for (MarkerDescription& point : file.cuePoints) {
    const auto id = static_cast<std::uint32_t>(point.id);
    used.insert(id);
    const auto label = labels.find(id);
    if (label == labels.end()) continue;
    point.name = label->second.name;
    point.note = label->second.note;
    point.length = label->second.length;
  }
  if (file.markerCount > file.cuePoints.size()) return;
  for (const auto& [id, label] : labels)
    if (!used.contains(id)) file.strayLabels.push_back(id);
}

FileDescription describeWav(ByteView content) {
  FileDescription file;
  std::map<std::uint32_t, Label> labels;
  const Container container = containerOf(content);
  const ByteOrder order = byteOrderOf(container);
  std::optional<std::uint32_t> fact;
  file.chunks = listChunks(content, [&](const ChunkEntry& chunk, ByteView body) {
    if (chunk.id == "fmt ") {
      file.format = describeFormatChunk(body, container);
    } else if (chunk.id == "data") {
      file.hasSamples = true;
      file.dataOffset = chunk.offset + chunkHeaderSize;
      file.dataSize = body.size();
    } else if (chunk.id == "fact" && body.size() >= sizeof(std::uint32_t)) {
      fact = Fields(body, order).u32(0);
    } else if (chunk.id == "smpl") {
      describeSampler(body, order, file);
    } else if (chunk.id == "inst") {
      const auto instrument = parseInstrumentChunk(body);
      file.instrument.reset();
      if (instrument)
        file.instrument = {.baseNote = instrument->unshiftedNote,
                           .detune = instrument->fineTune,
                           .lowNote = instrument->lowNote,
                           .highNote = instrument->highNote,
                           .lowVelocity = instrument->lowVelocity,
                           .highVelocity = instrument->highVelocity,
                           .gain = instrument->gain};
    } else if (chunk.id == "cue ") {
      describeCuePoints(body, order, file);
    } else if (chunk.id == "LIST") {
      describeList(body, order, file, labels);
    }
  });
  nameCuePoints(labels, file);
  const bool isCompressed = file.format && file.format->kind == SampleKind::compressed;
  if (isCompressed && fact) file.frames = file.declaredFrames = fact;
  return file;
}

/// The compression types whose samples are of equal size; all others are compressed.
SoundFormat formatOfType(std::string_view type) {
  SoundFormat format;
  const bool isLittle = type == "sowt" || type == "42ni" || type == "23ni";
  format.order = isLittle ? ByteOrder::little : ByteOrder::big;
  format.kind = SampleKind::compressed;
  for (const std::string_view integer :
       {"NONE", "twos", "sowt", "in24", "in32", "raw ", "42ni", "23ni"})
    if (type == integer) format.kind = SampleKind::integer;
  if (type == "fl32" || type == "FL32" || type == "fl64" || type == "FL64") {
    format.kind = SampleKind::floatingPoint;
    format.sampleBytes = type.ends_with("64") ? 8 : 4;
  } else if (type == "ulaw" || type == "ULAW" || type == "alaw" || type == "ALAW") {
    format.kind = type == "ulaw" || type == "ULAW" ? SampleKind::muLaw : SampleKind::aLaw;
    format.sampleBytes = 1;
  }
  format.isUnsigned = type == "raw ";
  return format;
}

std::optional<SoundFormat> describeCommon(ByteView body, bool isAIFC) {
  if (body.size() < (isAIFC ? aiff_layout::compressedCommonSize : aiff_layout::commonSize))
    return std::nullopt;
  const Fields fields(body, ByteOrder::big);
  SoundFormat format = formatOfType(isAIFC ? fields.id(18) : "NONE");
  if (isAIFC) {
    format.compressionType = fields.id(18);
    const std::size_t nameLength = fields.u8(22);
    const ByteView rest = body.subspan(std::min<std::size_t>(23, body.size()));
    format.compressionName = aiffText(rest.first(std::min(nameLength, rest.size())));
  }
  format.channels = static_cast<std::uint32_t>(std::max<int>(fields.i16(0), 0));
  format.bits = static_cast<std::uint32_t>(std::max<int>(fields.i16(6), 0));
  format.sampleRate = decodeExtended80(body.subspan(8, extended80Size));
  constexpr std::uint32_t mostBits = 32;
  if (format.compressionType == "42ni" || format.compressionType == "23ni")
    format.sampleBytes = format.compressionType == "42ni" ? 3 : 4;
  else if (format.kind == SampleKind::integer && format.bits <= mostBits)
    format.sampleBytes = bytesFor(format.bits);
  return format;
}

void describeLoop(const AiffLoop& loop, LoopRole role, FileDescription& file) {
  if (loop.playMode == play_mode::none) return;
  LoopDescription described;
  described.role = role;
  described.type = loop.playMode;
  described.kind = LoopKind::unknown;
  if (loop.playMode == play_mode::forward) described.kind = LoopKind::forward;
  if (loop.playMode == play_mode::forwardBackward) described.kind = LoopKind::alternating;
  described.beginMarker = loop.beginMarker;
  described.endMarker = loop.endMarker;
  // The later of two markers with the same ID counts.
  for (const MarkerDescription& marker : file.markers) {
    if (marker.id == loop.beginMarker) described.start = marker.position;
    if (marker.id == loop.endMarker) described.end = std::int64_t{marker.position} - 1;
  }
  file.loops.push_back(described);
  ++file.loopCount;
}

FileDescription describeAiff(ByteView content) {
  FileDescription file;
  const Container container = containerOf(content);
  std::optional<AiffInstrument> instrument;
  file.chunks = listChunks(content, [&](const ChunkEntry& chunk, ByteView body) {
    const Fields fields(body, ByteOrder::big);
    if (chunk.id == "COMM") {
      file.format = describeFormatChunk(body, container);
      if (file.format) file.declaredFrames = fields.u32(2);
    } else if (chunk.id == "SSND") {
      if (body.size() < aiff_layout::soundHeaderSize) return;
      const std::uint64_t skipped = std::min<std::uint64_t>(
          aiff_layout::soundHeaderSize + std::uint64_t{fields.u32(0)}, body.size());
      file.hasSamples = true;
      file.dataOffset = chunk.offset + chunkHeaderSize + skipped;
      file.dataSize = body.size() - skipped;
    } else if (chunk.id == "MARK") {
      file.markers.clear();
      for (AiffMarker& marker : parseMarkerChunk(body))
        file.markers.push_back(
            {.id = marker.id, .position = marker.position, .name = std::move(marker.name)});
      file.markerCount = file.markers.size();
    } else if (chunk.id == "INST") {
      instrument = parseAiffInstrument(body);
    } else if (isTextOfAiff(chunk.id)) {
      addText(file, chunk.id, aiffText(body));
    } else if (chunk.id == "COMT") {
      for (const AiffCommentView& comment : parseCommentChunk(body))
        addText(file, "COMT", aiffText(comment.text));
    }
  });
  if (instrument) {
    file.instrument = {.baseNote = instrument->baseNote,
                       .detune = instrument->detune,
                       .lowNote = instrument->lowNote,
                       .highNote = instrument->highNote,
                       .lowVelocity = instrument->lowVelocity,
                       .highVelocity = instrument->highVelocity,
                       .gain = instrument->gain};
    describeLoop(instrument->sustainLoop, LoopRole::sustain, file);
    describeLoop(instrument->releaseLoop, LoopRole::release, file);
  }
  return file;
}

}  // namespace

std::optional<SoundFormat> describeFormatChunk(ByteView body, Container container) {
  if (container == Container::aiff || container == Container::aifc)
    return describeCommon(body, container == Container::aifc);
  return describeWavFormat(body, byteOrderOf(container));
}

FileDescription describeFile(ByteView content) {
  FileDescription file;
  switch (containerOf(content)) {
    case Container::wav:
    case Container::rifx:
    case Container::rf64:
      file = describeWav(content);
      break;
    case Container::aiff:
    case Container::aifc:
      file = describeAiff(content);
      break;
    case Container::riff:
    case Container::form:
    case Container::unknown:
      file.chunks = listChunks(content, [](const ChunkEntry&, ByteView) {});
  }
  file.fileSize = content.size();
  if (file.format && file.format->frameBytes() != 0) {
    file.frames = file.dataSize / file.format->frameBytes();
    if (file.declaredFrames) file.frames = std::min(*file.frames, *file.declaredFrames);
  } else if (file.isAIFF() && file.format && file.format->kind == SampleKind::compressed) {
    file.frames = file.declaredFrames;
  }
  return file;
}

std::optional<RootKey> FileDescription::rootKey() const {
  constexpr std::uint32_t highestNote = 127;
  constexpr double halfway = 50;
  if (instrument && (!sampler || instrument->baseNote ==
                                     static_cast<int>(std::min(sampler->unityNote, highestNote))))
    return RootKey{instrument->baseNote, static_cast<double>(instrument->detune)};
  if (!sampler) return std::nullopt;
  const double cents = std::round(sampler->cents() * 100) / 100;
  const std::int64_t note = sampler->unityNote;
  if (std::round(cents) <= halfway) return RootKey{note, cents == 0 ? 0 : -cents};
  return RootKey{note + 1, std::round((100 - cents) * 100) / 100};
}

bool FileDescription::tuningsDisagree() const {
  constexpr double rounding = 1;  // cents
  if (!sampler || !instrument) return false;
  // Below note 0 smpl has no words for it.
  return std::fabs(std::max(instrument->pitch(), 0.0) - sampler->pitch()) > rounding;
}

double FileDescription::seconds() const {
  if (!frames || !format || !(format->sampleRate > 0)) return 0;
  return static_cast<double>(*frames) / format->sampleRate;
}

}  // namespace corvana
