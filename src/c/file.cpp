// What a file holds, for C.

#include <new>
#include <optional>
#include <string>

#include "c/boundary.hpp"
#include "inspect/file_description.hpp"
#include "vocabulary/errors.hpp"

using namespace corvana;

struct corvana_file {
  FileDescription description;
};

namespace {

void refuseOtherFiles(ByteView content) {
  using Case = ConversionError::Case;
  switch (containerOf(content)) {
    case Container::riff:
      throw ConversionError(Case::notWAVE);
    case Container::form:
      throw ConversionError(Case::notAIFF);
    case Container::unknown:
      throw ConversionError::unsupported(content.size() < fileHeaderSize
                                             ? UnsupportedKind::tooShort
                                             : UnsupportedKind::unknownFile);
    default:
      return;
  }
}

std::uint32_t sampleKindOf(SampleKind kind) {
  switch (kind) {
    case SampleKind::unknown:
      return CORVANA_SAMPLES_UNKNOWN;
    case SampleKind::integer:
      return CORVANA_SAMPLES_INTEGER;
    case SampleKind::floatingPoint:
      return CORVANA_SAMPLES_FLOATING_POINT;
    case SampleKind::aLaw:
      return CORVANA_SAMPLES_A_LAW;
    case SampleKind::muLaw:
      return CORVANA_SAMPLES_MU_LAW;
    case SampleKind::compressed:
      return CORVANA_SAMPLES_COMPRESSED;
  }
  return CORVANA_SAMPLES_UNKNOWN;
}

std::uint32_t loopKindOf(LoopKind kind) {
  switch (kind) {
    case LoopKind::unknown:
      return CORVANA_LOOP_UNKNOWN;
    case LoopKind::forward:
      return CORVANA_LOOP_FORWARD;
    case LoopKind::alternating:
      return CORVANA_LOOP_ALTERNATING;
    case LoopKind::backward:
      return CORVANA_LOOP_BACKWARD;
  }
  return CORVANA_LOOP_UNKNOWN;
}

std::uint32_t roleOf(std::optional<LoopRole> role) {
  if (!role) return CORVANA_ROLE_NONE;
  return *role == LoopRole::sustain ? CORVANA_ROLE_SUSTAIN : CORVANA_ROLE_RELEASE;
}

void describeFormat(const SoundFormat& format, corvana_file_info& info) {
  info.sample_kind = sampleKindOf(format.kind);
  info.channels = format.channels;
  info.bits = format.bits;
  info.sample_bytes = format.sampleBytes;
  info.is_big_endian = format.order == ByteOrder::big;
  info.is_unsigned = format.isUnsigned;
  info.sample_rate = format.sampleRate;
}

void describeKey(const FileDescription& file, corvana_file_info& info) {
  if (const auto root = file.rootKey()) {
    info.has_root_key = 1;
    info.root_key = root->note;
    info.root_cents = root->cents;
  }
  if (file.sampler) {
    info.has_sampler = 1;
    info.unity_note = file.sampler->unityNote;
    info.pitch_fraction = file.sampler->pitchFraction;
  }
  if (const auto& instrument = file.instrument) {
    info.has_instrument = 1;
    info.base_note = instrument->baseNote;
    info.detune = instrument->detune;
    info.low_note = instrument->lowNote;
    info.high_note = instrument->highNote;
    info.low_velocity = instrument->lowVelocity;
    info.high_velocity = instrument->highVelocity;
    info.gain = instrument->gain;
  }
  info.is_contradictory = file.tuningsDisagree();
}

const std::vector<MarkerDescription>& markersOf(const FileDescription& file) {
  return file.isAIFF() ? file.markers : file.cuePoints;
}

}  // namespace

corvana_status corvana_file_read(const void* bytes, size_t size, corvana_file** file,
                                 corvana_error* error) {
  if (file != nullptr) *file = nullptr;
  return guarded(error, [&] {
    if (file == nullptr || !areThere(bytes, size))
      return badArgument(error, "corvana_file_read: a pointer is null.");
    const ByteView content = view(bytes, size);
    refuseOtherFiles(content);
    *file = new corvana_file{describeFile(content)};
    return CORVANA_OK;
  });
}

void corvana_file_free(corvana_file* file) {
  delete file;
}

corvana_status corvana_file_get_info(const corvana_file* file, corvana_file_info* info) {
  if (file == nullptr || !isUsable(info)) return CORVANA_BAD_ARGUMENT;
  const FileDescription& description = file->description;
  corvana_file_info record{};
  record.format = description.isAIFF() ? CORVANA_AIFF : CORVANA_WAV;
  if (description.format) describeFormat(*description.format, record);
  record.frames = description.frames.value_or(0);
  record.data_offset = description.dataOffset;
  record.data_size = description.dataSize;
  record.loop_count = description.loops.size();
  record.marker_count = markersOf(description).size();
  describeKey(description, record);
  fill(*info, record);
  return CORVANA_OK;
}

corvana_status corvana_file_get_loop(const corvana_file* file, size_t index, corvana_loop* loop) {
  if (file == nullptr || !isUsable(loop)) return CORVANA_BAD_ARGUMENT;
  if (index >= file->description.loops.size()) return CORVANA_END;
  const LoopDescription& description = file->description.loops[index];
  corvana_loop record{};
  record.start = description.start.value_or(CORVANA_NONE);
  record.end = description.end.value_or(CORVANA_NONE);
  record.type = description.type;
  record.kind = loopKindOf(description.kind);
  record.role = roleOf(description.role);
  record.number = static_cast<std::uint32_t>(description.number);
  record.play_count = description.playCount;
  record.fraction = description.fraction;
  record.cue_id = description.cueID;
  record.begin_marker = description.beginMarker;
  record.end_marker = description.endMarker;
  fill(*loop, record);
  return CORVANA_OK;
}

corvana_status corvana_file_get_marker(const corvana_file* file, size_t index,
                                       corvana_marker* marker) {
  if (file == nullptr || !isUsable(marker)) return CORVANA_BAD_ARGUMENT;
  const std::vector<MarkerDescription>& markers = markersOf(file->description);
  if (index >= markers.size()) return CORVANA_END;
  const MarkerDescription& description = markers[index];
  corvana_marker record{};
  record.id = description.id;
  record.position = description.position;
  record.length = description.length ? std::int64_t{*description.length} : CORVANA_NONE;
  record.name = description.name.c_str();
  record.name_size = description.name.size();
  record.note = description.note.c_str();
  record.note_size = description.note.size();
  fill(*marker, record);
  return CORVANA_OK;
}
