#include "cli/info_text.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string_view>
#include <vector>

#include "cli/columns.hpp"
#include "inspect/format_text.hpp"
#include "vocabulary/messages.hpp"
#include "vocabulary/note_name.hpp"
#include "vocabulary/screen_text.hpp"
#include "vocabulary/text_format.hpp"

namespace corvana {
namespace {

using Lines = std::vector<std::string>;

constexpr std::size_t mostRows = 32;       ///< of a list
constexpr std::size_t mostTextLines = 12;  ///< of one text of the file

std::string text(std::int64_t number) {
  return decimalText(number);
}

std::string text(std::uint64_t number) {
  return decimalText(static_cast<std::int64_t>(number));
}

std::string fixed(double number, int places) {
  double scale = 1;
  for (int place = 0; place < places; ++place)
    scale *= 10;
  const auto scaled = static_cast<std::int64_t>(std::llround(std::fabs(number) * scale));
  const auto unit = static_cast<std::int64_t>(scale);
  const std::string behind = std::to_string(unit + scaled % unit).substr(1);
  std::string digits = number < 0 ? "-" : "";
  return digits += std::to_string(scaled / unit) + "." + behind;
}

/// With a "+" where it is above 0.
std::string signedText(double number) {
  std::string sign = number > 0 ? "+" : "";
  return sign += plainText(number);
}

/// With `separator` between the two where `text` is not empty.
void append(std::string& text, const char* separator, const std::string& more) {
  if (!text.empty()) text += separator;
  text += more;
}

class InfoWriter {
 public:
  InfoWriter(const FileDescription& file, int middleC, const Language& language)
      : file_(file), middleC_(middleC), language_(language) {}

  std::string write(const Prospect& prospect) {
    addFormat();
    addKeys();
    addLoops();
    addMarkers();
    addTexts();
    addChunks();
    addProspect(prospect);

    std::size_t width = 0;
    for (const Section& section : sections_)
      width = std::max(width, columnsOf(section.title));
    std::string result;
    for (const Section& section : sections_) {
      std::string title = section.title;
      for (const std::string& line : section.lines) {
        result += "  " + padded(title, width) + "  " + line + "\n";
        title.clear();
      }
    }
    return result;
  }

 private:
  struct Section {
    std::string title;
    Lines lines;
  };

  std::string localised(const char* key) const { return language_.localised(key); }
  std::string filled(const char* key, std::initializer_list<std::string_view> values) const {
    return fillText(localised(key), values);
  }

  void add(const char* title, Lines lines) {
    if (!lines.empty()) sections_.push_back({localised(title), std::move(lines)});
  }

  /// Says how many entries are not shown.
  void cut(Lines& lines, std::uint64_t count, std::size_t shown) const {
    if (count > shown)
      lines.push_back(filled(translatable("… and %@ more"), {text(count - shown)}));
  }

  std::string noteText(std::int64_t note) const {
    const std::string name = noteName(note, middleC_);
    return name.empty() ? text(note) : text(note) + " " + name;
  }

  std::string secondsText(std::int64_t frames) const {
    const bool hasRate = file_.format && file_.format->sampleRate > 0;
    return hasRate ? fixed(static_cast<double>(frames) / file_.format->sampleRate, 3) + " s" : "";
  }

  void addFormat() {
    add(translatable("Format"), {formatText(file_, language_)});

    const auto bytes = static_cast<std::int64_t>(file_.fileSize);
    std::string size = language_.localisedCount("%ld byte", "%ld bytes", bytes);
    if (file_.frames) {
      const auto frames = static_cast<std::int64_t>(*file_.frames);
      std::string length = language_.localisedCount("%ld frame", "%ld frames", frames);
      if (file_.declaredFrames && file_.frames != file_.declaredFrames)
        length = filled(translatable("%1$@ of %2$@ declared frames"),
                        {text(frames), text(*file_.declaredFrames)});
      if (const std::string seconds = secondsText(frames); !seconds.empty())
        length = seconds + ", " + length;
      size = length + ", " + size;
    }
    add(translatable("Length"), {size});
  }

  void addKeys() {
    if (const auto key = file_.rootKey()) {
      Lines lines = {noteText(key->note)};
      if (key->cents != 0) lines.back() += " (" + signedText(key->cents) + " ct)";
      if (const auto& sampler = file_.sampler) {
        char fraction[11];
        std::snprintf(fraction, sizeof fraction, "0x%08X", sampler->pitchFraction);
        lines.push_back("smpl: " + noteText(sampler->unityNote) + ", " +
                        filled(translatable("pitch fraction %1$@ = %2$@ ct above"),
                               {fraction, fixed(sampler->cents(), 2)}));
      }
      if (const auto& instrument = file_.instrument)
        lines.push_back(
            (file_.isAIFF() ? "INST: " : "inst: ") + noteText(instrument->baseNote) + ", " +
            filled(file_.isAIFF() ? translatable("detune %@ ct") : translatable("fine tune %@ ct"),
                   {signedText(instrument->detune)}));
      if (file_.tuningsDisagree())
        lines.push_back(
            "⚠\uFE0E " +
            filled(translatable("smpl and inst disagree by %@ ct."),
                   {fixed(std::fabs(file_.sampler->pitch() - file_.instrument->pitch()), 2)}));
      add(translatable("Root key"), lines);
    }
    if (const auto& instrument = file_.instrument) {
      add(translatable("Gain"), {signedText(instrument->gain) + " dB"});
      add(translatable("Keys"),
          {noteText(instrument->lowNote) + " – " + noteText(instrument->highNote)});
      add(translatable("Velocities"), {text(std::int64_t{instrument->lowVelocity}) + " – " +
                                       text(std::int64_t{instrument->highVelocity})});
    }
  }

  std::string kindText(const LoopDescription& loop) const {
    switch (loop.kind) {
      case LoopKind::forward:
        return localised("forward");
      case LoopKind::alternating:
        return localised("alternating");
      case LoopKind::backward:
        return localised("backward");
      case LoopKind::unknown:
        break;
    }
    return filled(translatable("unknown type %@"), {text(loop.type)});
  }

  void addLoops() {
    std::vector<Row> rows;
    for (const LoopDescription& loop : file_.loops) {
      if (rows.size() == mostRows) break;
      Row row = {loop.role ? localised(*loop.role == LoopRole::sustain ? translatable("Sustain")
                                                                       : translatable("Release"))
                           : text(loop.number),
                 kindText(loop)};
      const bool isWhole = loop.start && loop.end;
      const std::int64_t length =
          isWhole ? std::max<std::int64_t>(*loop.end - *loop.start + 1, 0) : 0;
      row.insert(row.end(),
                 {loop.start ? text(*loop.start) : "?", dash, loop.end ? text(*loop.end) : "?",
                  isWhole ? language_.localisedCount("%ld frame", "%ld frames", length) : "",
                  isWhole ? secondsText(length) : ""});
      std::string details =
          loop.playCount == 0
              ? localised("endless")
              : language_.localisedCount("once", "%ld times", std::int64_t{loop.playCount});
      if (loop.role)
        details += ", " + filled(translatable("markers %1$@ and %2$@"),
                                 {text(std::int64_t{loop.beginMarker}),
                                  text(std::int64_t{loop.endMarker})});
      if (loop.cueID != 0)
        details += ", " + filled(translatable("cue point %@"), {text(std::int64_t{loop.cueID})});
      if (loop.fraction != 0)
        details += ", " + filled(translatable("fraction %@ frames"),
                                 {fixed(loop.fraction / 4294967296.0, 4)});
      row.push_back(details);
      rows.push_back(row);
    }
    Lines lines = aligned(rows);
    cut(lines, file_.loopCount, rows.size());
    add(translatable("Loops"), lines);
  }

  void addMarkers() {
    std::vector<Row> rows;
    for (const MarkerDescription& marker : file_.isAIFF() ? file_.markers : file_.cuePoints) {
      if (rows.size() == mostRows) break;
      std::string name = readableLine(marker.name);
      if (marker.length)
        append(name, ", ",
               language_.localisedCount("%ld frame", "%ld frames", std::int64_t{*marker.length}));
      if (!marker.note.empty()) append(name, ": ", readableLine(marker.note));
      rows.push_back({text(marker.id), text(std::int64_t{marker.position}),
                      secondsText(marker.position), name});
    }
    Lines lines = aligned(rows);
    cut(lines, file_.markerCount, rows.size());
    add(file_.isAIFF() ? translatable("Markers") : translatable("Cue points"), lines);
  }

  void addTexts() {
    Lines lines;
    std::size_t shown = 0;
    for (const TextDescription& entry : file_.texts) {
      if (shown++ == mostRows) break;
      std::string label = readableID(entry.chunk) + "  ";
      std::string_view rest = entry.text;
      for (std::size_t i = 0; i < mostTextLines && !label.empty(); ++i) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        const bool isCut = i + 1 == mostTextLines && end < rest.size();
        lines.push_back(label + readableLine(rest.substr(0, end)) + (isCut ? " …" : ""));
        label = end < rest.size() ? std::string(6, ' ') : "";
        rest.remove_prefix(std::min(end + 1, rest.size()));
      }
    }
    cut(lines, file_.textCount, std::min(file_.texts.size(), mostRows));
    add(translatable("Texts"), lines);
  }

  void addChunks() {
    std::vector<Row> rows;
    for (const ChunkEntry& chunk : file_.chunks.chunks) {
      if (rows.size() == mostRows) break;
      std::string remark;
      if (chunk.presentSize < chunk.declaredSize)
        remark = filled(translatable("only %@ of them are there"), {text(chunk.presentSize)});
      else if (chunk.padding == Padding::missing)
        remark = localised("the pad byte is missing");
      const auto size = static_cast<std::int64_t>(chunk.declaredSize);
      rows.push_back({readableID(chunk.id), filled(translatable("at %@"), {text(chunk.offset)}),
                      language_.localisedCount("%ld byte", "%ld bytes", size), remark});
    }
    Lines lines = aligned(rows);
    cut(lines, file_.chunks.count, rows.size());
    add(translatable("Chunks"), lines);
  }

  void addProspect(const Prospect& prospect) {
    if (const auto* error = std::get_if<ConversionError>(&prospect)) {
      add(translatable("Conversion"), {"✗ " + errorDescription(*error, language_)});
      return;
    }
    const auto& plan = std::get<ConversionPlan>(prospect);
    Lines lines = {(file_.isAIFF() ? "=> WAV  [" : "=> AIFF  [") +
                   makeSummary(plan.summary, language_) + "]"};
    for (const Warning& warning : plan.warnings) {
      if (lines.size() > mostRows) break;
      lines.push_back("⚠\uFE0E " + warningText(warning, language_));
    }
    cut(lines, plan.warnings.size(), lines.size() - 1);
    if (!plan.leftOut.empty() && !nameLeftOut(plan.warnings))
      lines.push_back(leftOutText(plan.leftOut, language_));
    add(translatable("Conversion"), lines);
  }

  const FileDescription& file_;
  int middleC_;
  const Language& language_;
  std::vector<Section> sections_;
};

}  // namespace

std::string infoText(const FileDescription& file, const Prospect& prospect, int middleC,
                     const Language& language) {
  return InfoWriter(file, middleC, language).write(prospect);
}

}  // namespace corvana
