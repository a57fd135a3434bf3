#include "json/records.hpp"

#include <array>
#include <cmath>
#include <string_view>

#include "verify/difference_texts.hpp"
#include "vocabulary/note_name.hpp"
#include "vocabulary/unicode.hpp"

namespace corvana {
namespace {

constexpr int schemaVersion = 1;

const char* nameOf(Container container) {
  constexpr std::array names = {"unknown", "wav", "rifx", "rf64", "riff", "aiff", "aiff-c", "form"};
  return names.at(static_cast<std::size_t>(container));
}

const char* nameOf(SampleKind kind) {
  constexpr std::array names = {"unknown", "pcm", "float", "a-law", "mu-law", "compressed"};
  return names.at(static_cast<std::size_t>(kind));
}

const char* nameOf(LoopKind kind) {
  constexpr std::array names = {"forward", "alternating", "backward", "unknown"};
  return names.at(static_cast<std::size_t>(kind));
}

const char* nameOf(Padding padding) {
  constexpr std::array names = {"none", "zero", "not-zero", "missing"};
  return names.at(static_cast<std::size_t>(padding));
}

const char* nameOf(LoopRole role) {
  return role == LoopRole::sustain ? "sustain" : "release";
}

std::string hexDigits(std::string_view bytes) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  for (const char byte : bytes) {
    text += digits[static_cast<unsigned char>(byte) >> 4];
    text += digits[static_cast<unsigned char>(byte) & 0xFU];
  }
  return text;
}

/// Without a point where it is whole.
Json numberOf(double number) {
  constexpr double exact = 9'007'199'254'740'992;  // 2^53
  if (std::fabs(number) < exact && number == std::floor(number))
    return static_cast<std::int64_t>(number);
  return number;
}

/// Absent values become null.
template <typename Value>
Json valueOrNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json();
}

Json jsonOf(const LoopDescription& loop) {
  Json object;
  if (loop.role)
    object["role"] = nameOf(*loop.role);
  else
    object["number"] = loop.number;
  object["type"] = nameOf(loop.kind);
  object["typeCode"] = loop.type;
  object["start"] = valueOrNull(loop.start);
  object["end"] = valueOrNull(loop.end);
  if (loop.start && loop.end) object["length"] = *loop.end - *loop.start + 1;
  if (loop.role) {
    object["beginMarker"] = loop.beginMarker;
    object["endMarker"] = loop.endMarker;
  } else {
    object["playCount"] = loop.playCount;
    object["cueId"] = loop.cueID;
    object["fraction"] = loop.fraction;
  }
  return object;
}

Json jsonOf(const MarkerDescription& marker) {
  Json object = {{"id", marker.id}, {"position", marker.position}, {"name", marker.name}};
  if (!marker.note.empty()) object["note"] = marker.note;
  if (marker.length) object["length"] = *marker.length;
  return object;
}

Json jsonOf(const ChunkEntry& chunk) {
  return {{"id", chunk.id},
          {"offset", chunk.offset},
          {"size", chunk.declaredSize},
          {"present", chunk.presentSize},
          {"padding", nameOf(chunk.padding)}};
}

Json jsonOf(const TextDescription& text) {
  return {{"chunk", text.chunk}, {"text", text.text}};
}

struct JsonOfValue {
  Json operator()(LoopRole role) const { return nameOf(role); }
  template <typename Value>
  Json operator()(const Value& value) const {
    return value;
  }
};

Json jsonOf(const MessageValue& value) {
  return std::visit(JsonOfValue(), value);
}

template <typename Record>
Json listOf(const std::vector<Record>& records) {
  Json list = Json::array();
  for (const Record& record : records)
    list.push_back(jsonOf(record));
  return list;
}

void addSummary(Json& object, const Summary& summary) {
  if (summary.encoding != SampleEncoding::integer)
    object["encoding"] = encodingCode(summary.encoding);
  object["bits"] = summary.bits;
  object["channels"] = summary.channels;
  object["sampleRate"] = summary.sampleRate;
  if (summary.rootKey) {
    object["rootKey"] = *summary.rootKey;
    object["fineTune"] = summary.fineTune;
  }
  object["loopCount"] = summary.loopCount;
  object["markerCount"] = summary.markerCount;
  object["cuePointCount"] = summary.cuePointCount;
  if (summary.isRestored) object["restored"] = true;
}

void addFormat(Json& object, const SoundFormat& format) {
  object["encoding"] = nameOf(format.kind);
  if (format.formatTag != 0) object["formatTag"] = format.formatTag;
  if (!format.compressionType.empty()) {
    object["compressionType"] = format.compressionType;
    object["compressionName"] = format.compressionName;
  }
  object["bits"] = format.bits;
  object["channels"] = format.channels;
  object["sampleRate"] = numberOf(format.sampleRate);
}

void addKeys(Json& object, const FileDescription& file, int middleC) {
  if (const auto key = file.rootKey()) {
    object["rootKey"] = key->note;
    object["rootKeyName"] = noteName(key->note, middleC);
    object["fineTune"] = numberOf(key->cents);
  }
  if (const auto& sampler = file.sampler)
    object["sampler"] = {{"unityNote", sampler->unityNote},
                         {"pitchFraction", sampler->pitchFraction},
                         {"cents", sampler->cents()}};
  if (const auto& instrument = file.instrument)
    object["instrument"] = {{"baseNote", instrument->baseNote},
                            {"fineTune", instrument->detune},
                            {"gain", instrument->gain},
                            {"lowNote", instrument->lowNote},
                            {"highNote", instrument->highNote},
                            {"lowVelocity", instrument->lowVelocity},
                            {"highVelocity", instrument->highVelocity}};
  if (file.sampler && file.instrument) object["tuningsDisagree"] = file.tuningsDisagree();
}

}  // namespace

Json fileObject(const std::string& input) {
  Json object = {{"schema", schemaVersion}};
  addPath(object, "input", input);
  return object;
}

void addPath(Json& object, const std::string& key, const std::string& path) {
  object[key] = path;  // textOf takes care of what is not UTF-8
  if (!isUtf8(path)) object[key + "Bytes"] = hexDigits(path);
}

Json jsonOf(const Warning& warning, const Language& language) {
  return {{"code", warningCode(warning.kind)},
          {"values", listOf(warning.values)},
          {"text", warningText(warning, language)}};
}

Json jsonOf(const Warnings& warnings, const Language& language) {
  Json list = Json::array();
  for (const Warning& warning : warnings)
    list.push_back(jsonOf(warning, language));
  return list;
}

Json jsonOf(const Failure& failure) {
  return {{"code", failure.code}, {"values", listOf(failure.values)}, {"text", failure.text}};
}

const char* directionCode(bool toWAV) {
  return toWAV ? "aiff-to-wav" : "wav-to-aiff";
}

void addOutput(Json& object, bool isWAV, const Summary& summary, std::uint32_t frames,
               std::uint64_t bytes) {
  const bool isAIFFC = !isWAV && summary.encoding != SampleEncoding::integer;
  object["format"] = nameOf(isWAV ? Container::wav : isAIFFC ? Container::aifc : Container::aiff);
  addSummary(object, summary);
  object["frames"] = frames;
  object["bytes"] = bytes;
}

Json jsonOf(const Finding& finding, const Language& language) {
  Json object = {{"code", findingCode(finding)}, {"severity", severityCode(finding.severity)}};
  if (finding.offset) object["offset"] = *finding.offset;
  if (finding.frame) object["frame"] = *finding.frame;
  if (finding.loop) object["loop"] = std::visit(JsonOfValue(), *finding.loop);
  const auto* error = std::get_if<ConversionError>(&finding.what);
  object["values"] = listOf(error != nullptr ? error->values() : finding.values);
  object["text"] = findingText(finding, language);
  return object;
}

void addDescription(Json& object, const FileDescription& file, int middleC) {
  object["bytes"] = file.fileSize;
  object["format"] = nameOf(file.chunks.container);
  if (file.format) addFormat(object, *file.format);
  if (file.frames) object["frames"] = *file.frames;
  if (file.declaredFrames) object["declaredFrames"] = *file.declaredFrames;
  if (file.frames) object["duration"] = file.seconds();
  addKeys(object, file, middleC);
  object["loopCount"] = file.loopCount;
  object["loops"] = listOf(file.loops);
  object[file.isAIFF() ? "markerCount" : "cuePointCount"] = file.markerCount;
  object[file.isAIFF() ? "markers" : "cuePoints"] =
      listOf(file.isAIFF() ? file.markers : file.cuePoints);
  object["textCount"] = file.textCount;
  object["texts"] = listOf(file.texts);
  object["chunkCount"] = file.chunks.count;
  object["chunks"] = listOf(file.chunks.chunks);
}

void addProspect(Json& object, const Prospect& prospect, const Language& language) {
  Json& conversion = object["conversion"];
  if (const auto* error = std::get_if<ConversionError>(&prospect)) {
    conversion["error"] = jsonOf(failureOf(*error, language));
    return;
  }
  const auto& plan = std::get<ConversionPlan>(prospect);
  conversion["direction"] = directionCode(plan.makesWAV());
  conversion["summary"] = makeSummary(plan.summary, language);
  conversion["warnings"] = jsonOf(plan.warnings, language);
  conversion["leftOut"] = plan.leftOut;
  if (plan.summary.isRestored) conversion["restored"] = true;
}

void addDifferences(Json& object, const Differences& differences, const Language& language) {
  object["differenceCount"] = differences.count;
  Json& list = object["differences"] = Json::array();
  for (const Difference& difference : differences.kept) {
    Json entry = {{"code", differenceCode(difference)}};
    const auto add = [&entry](const char* key, const auto& value) {
      if (value) entry[key] = *value;
    };
    add("number", difference.number);
    add("frame", difference.frame);
    add("channel", difference.channel);
    if (!difference.chunk.empty()) entry["chunk"] = difference.chunk;
    add("offset", difference.offset);
    if (difference.expected) entry["expected"] = std::visit(JsonOfValue(), *difference.expected);
    if (difference.found) entry["found"] = std::visit(JsonOfValue(), *difference.found);
    entry["text"] = differenceText(difference, language);
    list.push_back(std::move(entry));
  }
}

std::string textOf(const Json& object, bool asASCII) {
  return object.dump(-1, ' ', asASCII, Json::error_handler_t::replace);
}

}  // namespace corvana
