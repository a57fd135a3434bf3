#include "check/check_file.hpp"

#include <algorithm>
#include <cmath>
#include <set>
#include <span>
#include <string_view>
#include <utility>

#include "aiff/aiff_format.hpp"
#include "check/seam.hpp"
#include "wav/wav_format.hpp"

namespace corvana {
namespace {

using Case = ConversionError::Case;

constexpr std::size_t mostSeams = 256;  ///< of a hostile file
constexpr int highestNote = 127;
constexpr int mostDetune = 50;  // cents

/// The chunks that a reader makes something of. Of them a file has one at most.
struct KnownChunk {
  std::string_view id;
  std::size_t leastSize = 0;
};
constexpr KnownChunk wavChunks[] = {{"fmt "},
                                    {"data"},
                                    {"smpl", wav_layout::samplerHeaderSize},
                                    {"inst", wav_layout::instrumentSize},
                                    {"cue ", wav_layout::cueHeaderSize}};
constexpr KnownChunk aiffChunks[] = {{"COMM"},
                                     {"SSND", aiff_layout::soundHeaderSize},
                                     {"MARK", aiff_layout::markerCountSize},
                                     {"INST", aiff_layout::instrumentSize}};

bool isID(std::string_view id) {
  return std::all_of(id.begin(), id.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

MessageValue valueOf(std::uint64_t number) {
  return static_cast<std::int64_t>(number);
}

/// For people: no more places than say something.
double rounded(double number, double places) {
  return std::round(number * places) / places;
}

class Checker {
 public:
  Checker(ByteView content, const FileDescription& file) : content_(content), file_(file) {}

  std::vector<Finding> check() {
    if (checkContainer()) {
      checkChunks();
      checkFormat();
      checkSampleData();
      checkMarkers();
      checkKeys();
      checkLoops();
    }
    return std::move(findings_);
  }

 private:
  void add(Finding finding) {
    if (findings_.size() < maxFindings) {
      findings_.push_back(std::move(finding));
      return;
    }
    if (findings_.size() == maxFindings)
      findings_.push_back(
          {FindingKind::moreFindings, Severity::note, {}, {}, {}, {std::int64_t{0}}});
    Finding& last = findings_.back();
    ++std::get<std::int64_t>(last.values.front());
    last.severity = std::max(last.severity, finding.severity);
  }

  void addError(const ConversionError& error, std::optional<std::uint64_t> offset = {}) {
    add({error, Severity::error, offset});
  }

  /// About a chunk; its ID and offset come before `values`.
  void addChunk(FindingKind kind, Severity severity, const ChunkEntry& chunk,
                std::initializer_list<MessageValue> values = {}) {
    Finding finding{kind, severity, chunk.offset};
    finding.values = {chunk.id, valueOf(chunk.offset)};
    finding.values.insert(finding.values.end(), values);
    add(std::move(finding));
  }

  /// Of a list that was cut.
  void addNotChecked(std::uint64_t count, std::optional<std::uint64_t> offset) {
    if (count != 0)
      add({FindingKind::notChecked, Severity::note, offset, {}, {}, {valueOf(count)}});
  }

  /// The last of its ID, which is the one that counts.
  const ChunkEntry* chunk(std::string_view id) const {
    const auto& chunks = file_.chunks.chunks;
    const auto found = std::find_if(chunks.rbegin(), chunks.rend(),
                                    [id](const ChunkEntry& entry) { return entry.id == id; });
    return found == chunks.rend() ? nullptr : &*found;
  }

  std::optional<std::uint64_t> offsetOf(std::string_view id, std::uint64_t inBody = 0) const {
    const ChunkEntry* const entry = chunk(id);
    if (entry == nullptr) return std::nullopt;
    return entry->offset + chunkHeaderSize + inBody;
  }

  ByteView bodyOf(const ChunkEntry& entry) const {
    return content_.subspan(static_cast<std::size_t>(entry.offset + chunkHeaderSize),
                            static_cast<std::size_t>(entry.presentSize));
  }

  /// Whether there is more to look at.
  bool checkContainer() {
    switch (file_.chunks.container) {
      case Container::unknown:
        addError(ConversionError::unsupported(content_.size() < fileHeaderSize
                                                  ? UnsupportedKind::tooShort
                                                  : UnsupportedKind::unknownFile),
                 0);
        return false;
      case Container::riff:
        addError(ConversionError(Case::notWAVE), 8);
        return false;
      case Container::form:
        addError(ConversionError(Case::notAIFF), 8);
        return false;
      default:
        break;
    }
    const std::uint64_t declared = file_.chunks.declaredEnd;
    const bool lacksPadding =
        !file_.chunks.chunks.empty() && file_.chunks.chunks.back().padding == Padding::missing;
    // A container of odd size has a pad byte of its own; one that counts the pad byte that its last
    // chunk lacks has another finding already.
    const bool isRight = declared == file_.fileSize ||
                         (declared % 2 != 0 && declared + 1 == file_.fileSize) ||
                         (lacksPadding && declared == file_.fileSize + 1);
    if (!isRight)
      add({FindingKind::containerSize,
           declared > file_.fileSize ? Severity::error : Severity::warning,
           4,
           {},
           {},
           {valueOf(declared), valueOf(file_.fileSize)}});
    return true;
  }

  std::span<const KnownChunk> knownChunks() const {
    if (file_.isAIFF()) return aiffChunks;
    return wavChunks;
  }

  bool isKnown(const ChunkEntry& entry) const {
    const auto known = knownChunks();
    return std::any_of(known.begin(), known.end(),
                       [&](const KnownChunk& one) { return one.id == entry.id; });
  }

  bool isLast(const ChunkEntry& entry) const {
    return entry.offset + chunkHeaderSize + entry.presentSize == file_.fileSize;
  }

  /// Whether readers find other chunks behind it than there are.
  bool misleads(const ChunkEntry& entry) const {
    return entry.padding == Padding::missing && !isLast(entry);
  }

  void checkChunks() {
    std::set<std::string_view> seen;
    const auto& chunks = file_.chunks.chunks;
    for (auto at = chunks.begin(); at != chunks.end(); ++at) {
      const ChunkEntry& entry = *at;
      if (!isID(entry.id)) {
        const bool hidesMore = std::any_of(at, chunks.end(), [this](const ChunkEntry& one) {
          return isKnown(one) || misleads(one);
        });
        add({FindingKind::chunkID,
             hidesMore ? Severity::error : Severity::warning,
             entry.offset,
             {},
             {},
             {valueOf(entry.offset)}});
        return;  // nothing behind it can be relied on
      }
      if (entry.presentSize < entry.declaredSize)
        addChunk(FindingKind::chunkBeyondFile, Severity::error, entry,
                 {valueOf(entry.declaredSize), valueOf(entry.presentSize)});
      checkPadding(entry);
      for (const KnownChunk& known : knownChunks()) {
        if (entry.id != known.id) continue;
        if (!seen.insert(known.id).second)
          addChunk(FindingKind::chunkDoubled, Severity::warning, entry);
        if (entry.presentSize < known.leastSize)
          addChunk(FindingKind::chunkTooShort, Severity::error, entry,
                   {valueOf(entry.presentSize), valueOf(known.leastSize)});
        else
          checkRecordCount(entry);
      }
    }
    addNotChecked(file_.chunks.count - chunks.size(), {});
    if (const std::uint64_t trailing = file_.fileSize - file_.chunks.end; trailing != 0)
      add({FindingKind::trailingBytes,
           Severity::note,
           file_.chunks.end,
           {},
           {},
           {valueOf(trailing)}});
  }

  void checkPadding(const ChunkEntry& entry) {
    if (entry.padding == Padding::missing)
      addChunk(FindingKind::paddingMissing, misleads(entry) ? Severity::error : Severity::note,
               entry);
    if (entry.padding == Padding::other)
      addChunk(FindingKind::paddingNotZero, Severity::note, entry);
  }

  void checkRecordCount(const ChunkEntry& entry) {
    const Fields fields(bodyOf(entry), byteOrderOf(file_.chunks.container));
    std::uint64_t declared = 0;
    std::uint64_t held = 0;
    if (entry.id == "smpl") {
      declared = fields.u32(28);
      held = (entry.presentSize - wav_layout::samplerHeaderSize) / wav_layout::loopSize;
    } else if (entry.id == "cue ") {
      declared = fields.u32(0);
      held = (entry.presentSize - wav_layout::cueHeaderSize) / wav_layout::cuePointSize;
    } else if (entry.id == "MARK" && &entry == chunk("MARK")) {
      declared = fields.u16(0);
      held = file_.markerCount;
    }
    if (declared > held)
      addChunk(FindingKind::countBeyondChunk, Severity::error, entry,
               {valueOf(declared), valueOf(held)});
  }

  void checkFormat() {
    const bool isAIFF = file_.isAIFF();
    bool isThere = false;
    // Each of them: a damaged one keeps readers from going on to the last, which counts.
    listChunks(content_, [&](const ChunkEntry& entry, ByteView body) {
      if (entry.id != (isAIFF ? "COMM" : "fmt ")) return;
      isThere = true;
      const auto format = describeFormatChunk(body, file_.chunks.container);
      if (!format)
        addError(ConversionError(isAIFF ? Case::missingComm : Case::badFormatChunk), entry.offset);
      else if (isAIFF)
        checkCommon(*format, entry.offset);
      else
        checkWavFormat(*format, body, entry.offset);
    });
    if (!isThere) addError(ConversionError(isAIFF ? Case::missingComm : Case::missingFormat));
    const bool needsSamples = !isAIFF || file_.declaredFrames.value_or(1) != 0;
    if (!file_.hasSamples && needsSamples)
      addError(ConversionError(isAIFF ? Case::missingSound : Case::missingData));
  }

  void checkCommon(const SoundFormat& format, std::uint64_t offset) {
    constexpr double firstBadRate = 4'000'000'000.0;
    if (format.channels == 0)
      addError(ConversionError::unsupported(UnsupportedKind::channels, {std::int64_t{0}}), offset);
    if (format.kind == SampleKind::integer && (format.bits < 1 || format.bits > 32))
      addError(ConversionError::unsupported(UnsupportedKind::bitDepth, {std::int64_t{format.bits}}),
               offset);
    if (!(format.sampleRate >= 1 && format.sampleRate < firstBadRate))
      addError(ConversionError::unsupported(UnsupportedKind::sampleRate, {format.sampleRate}),
               offset);
  }

  void checkWavFormat(const SoundFormat& format, ByteView body, std::uint64_t offset) {
    const Fields fields(body, format.order);
    const std::uint32_t frameBytes = fields.u16(12);
    const std::uint32_t bits = fields.u16(14);
    const bool isCompressed = format.kind == SampleKind::compressed;
    if (format.channels == 0 || format.sampleRate == 0 || format.kind == SampleKind::unknown ||
        (!isCompressed && (bits == 0 || frameBytes % format.channels != 0))) {
      addError(ConversionError(Case::badFormatChunk), offset);
      return;
    }
    const std::uint32_t needed = bytesFor(bits) * format.channels;
    if (!isCompressed && frameBytes < needed)
      add({FindingKind::frameSize,
           Severity::warning,
           offset,
           {},
           {},
           {std::int64_t{frameBytes}, std::int64_t{needed}}});
  }

  void checkSampleData() {
    const std::uint64_t frameBytes = file_.format ? file_.format->frameBytes() : 0;
    if (!file_.hasSamples || frameBytes == 0) return;
    const ChunkEntry* const sound = chunk(file_.isAIFF() ? "SSND" : "data");
    if (sound == nullptr) return;
    std::uint64_t leftOver = file_.dataSize % frameBytes;
    if (file_.isAIFF()) {
      if (!file_.declaredFrames) return;
      const std::uint64_t declaredSize = *file_.declaredFrames * frameBytes;
      // A block size says that there may be more than the frames; and some writers count the pad
      // byte.
      const bool mayHoldMore = Fields(bodyOf(*sound), ByteOrder::big).u32(4) != 0 ||
                               file_.dataSize == declaredSize + declaredSize % 2;
      const std::uint64_t held = file_.dataSize / frameBytes;
      if (held < *file_.declaredFrames || (held > *file_.declaredFrames && !mayHoldMore))
        add({FindingKind::frameCount,
             held < *file_.declaredFrames ? Severity::error : Severity::warning,
             sound->offset,
             static_cast<std::int64_t>(held),
             {},
             {valueOf(*file_.declaredFrames), valueOf(held)}});
      if (mayHoldMore) leftOver = 0;
    }
    if (leftOver != 0 && sound->presentSize == sound->declaredSize)
      add({FindingKind::wholeFrames,
           Severity::warning,
           file_.dataOffset + file_.dataSize - leftOver,
           static_cast<std::int64_t>(file_.dataSize / frameBytes),
           {},
           {valueOf(leftOver)}});
  }

  std::optional<std::uint64_t> offsetOfMarker(std::size_t index) const {
    if (file_.isAIFF()) return offsetOf("MARK");
    return offsetOf("cue ", wav_layout::cueHeaderSize + index * wav_layout::cuePointSize);
  }

  void checkMarkers() {
    std::set<std::int64_t> seen;
    const auto& markers = file_.isAIFF() ? file_.markers : file_.cuePoints;
    for (std::size_t i = 0; i < markers.size(); ++i) {
      const MarkerDescription& marker = markers[i];
      const auto offset = offsetOfMarker(i);
      if (!seen.insert(marker.id).second) {
        const bool loopNeedsIt =
            std::any_of(file_.loops.begin(), file_.loops.end(), [&](const LoopDescription& loop) {
              return loop.role && (loop.beginMarker == marker.id || loop.endMarker == marker.id);
            });
        add({FindingKind::markerDoubled,
             loopNeedsIt ? Severity::error : Severity::warning,
             offset,
             marker.position,
             {},
             {marker.id}});
      }
      if (file_.isAIFF() && marker.id < 1)
        add({FindingKind::markerID, Severity::warning, offset, marker.position, {}, {marker.id}});
      if (file_.frames && marker.position > *file_.frames)
        add({FindingKind::markerBehindData,
             Severity::warning,
             offset,
             marker.position,
             {},
             {marker.id, std::int64_t{marker.position}, valueOf(*file_.frames)}});
    }
    addNotChecked(file_.markerCount - markers.size(), offsetOf("cue "));
    for (const std::int64_t id : file_.strayLabels)
      add({FindingKind::strayLabel, Severity::warning, offsetOf("LIST"), {}, {}, {id}});
  }

  void checkRootKey(const char* id, std::int64_t note) {
    if (note < 0 || note > highestNote)
      add({FindingKind::rootKey, Severity::warning, offsetOf(id), {}, {}, {std::string(id), note}});
  }

  void checkKeys() {
    if (file_.sampler) checkRootKey("smpl", file_.sampler->unityNote);
    if (const auto& instrument = file_.instrument) {
      const char* const id = file_.isAIFF() ? "INST" : "inst";
      checkRootKey(id, instrument->baseNote);
      if (std::abs(instrument->detune) > mostDetune)
        add({FindingKind::fineTune,
             Severity::warning,
             offsetOf(id, 1),
             {},
             {},
             {std::string(id), std::int64_t{instrument->detune}}});
      checkRange(FindingKind::keyRange, id, instrument->lowNote, instrument->highNote);
      checkRange(FindingKind::velocityRange, id, instrument->lowVelocity, instrument->highVelocity);
    }
    if (file_.tuningsDisagree()) {
      const double cents = file_.sampler->pitch() - file_.instrument->pitch();
      add({FindingKind::tuningsDisagree,
           Severity::warning,
           offsetOf("smpl"),
           {},
           {},
           {rounded(std::fabs(cents), 100)}});
    }
  }

  void checkRange(FindingKind kind, const char* id, int low, int high) {
    if (low > high || low < 0 || high > highestNote)
      add({kind, Severity::warning, offsetOf(id), {}, {}, {std::int64_t{low}, std::int64_t{high}}});
  }

  static LoopName nameOf(const LoopDescription& loop) {
    if (loop.role) return *loop.role;
    return loop.number;
  }

  std::optional<std::uint64_t> offsetOfLoop(const LoopDescription& loop) const {
    constexpr std::size_t sustainOffset = 8;
    constexpr std::size_t releaseOffset = 14;
    if (loop.role)
      return offsetOf("INST", *loop.role == LoopRole::sustain ? sustainOffset : releaseOffset);
    return offsetOf("smpl", wav_layout::samplerHeaderSize +
                                static_cast<std::uint64_t>(loop.number - 1) * wav_layout::loopSize);
  }

  void addLoop(FindingKind kind, Severity severity, const LoopDescription& loop, std::int64_t frame,
               std::initializer_list<MessageValue> values) {
    add({kind, severity, offsetOfLoop(loop), frame, nameOf(loop), values});
  }

  void checkLoops() {
    std::vector<const LoopDescription*> sound;  // those that could play
    for (const LoopDescription& loop : file_.loops)
      if (checkLoop(loop)) sound.push_back(&loop);
    for (std::size_t i = 0; i < std::min(sound.size(), mostSeams); ++i)
      checkSeam(*sound[i]);
    checkOverlaps(std::move(sound));
    addNotChecked(file_.loopCount - file_.loops.size(), offsetOf("smpl"));
  }

  /// Whether its frames are all there.
  bool checkLoop(const LoopDescription& loop) {
    if (loop.kind == LoopKind::unknown)
      addLoop(FindingKind::loopType, Severity::warning, loop, loop.start.value_or(0), {loop.type});
    if (!loop.start)
      addLoop(FindingKind::loopMarkerMissing, Severity::error, loop, 0,
              {std::int64_t{loop.beginMarker}});
    if (!loop.end)
      addLoop(FindingKind::loopMarkerMissing, Severity::error, loop, 0,
              {std::int64_t{loop.endMarker}});
    if (!loop.start || !loop.end) return false;
    if (*loop.end < *loop.start) {
      addLoop(FindingKind::loopEmpty, Severity::error, loop, *loop.start, {*loop.start, *loop.end});
      return false;
    }
    if (!file_.frames) return false;
    const auto frames = static_cast<std::int64_t>(*file_.frames);
    if (*loop.end < frames) return true;
    // An AIFF marker lies between frames; there nobody can mistake one end for the other.
    if (*loop.end == frames && *loop.start < frames && !loop.role)
      addLoop(FindingKind::loopEndExclusive, Severity::warning, loop, *loop.end,
              {*loop.end, frames - 1});
    else
      addLoop(FindingKind::loopBehindData, Severity::error, loop, *loop.end,
              {*loop.start, *loop.end, frames - 1});
    return false;
  }

  void checkSeam(const LoopDescription& loop) {
    if (loop.kind == LoopKind::alternating) return;  // turns round, and so has none
    const auto seam = findSeamJump(content_, file_, static_cast<std::uint64_t>(*loop.start),
                                   static_cast<std::uint64_t>(*loop.end));
    if (seam)
      addLoop(FindingKind::loopSeam, Severity::warning, loop, *loop.end,
              {rounded(seam->jump, 10'000), rounded(seam->largestStep, 10'000)});
  }

  /// Loops inside others are as they should be; those that share a part are not.
  void checkOverlaps(std::vector<const LoopDescription*> loops) {
    std::sort(loops.begin(), loops.end(), [](const LoopDescription* a, const LoopDescription* b) {
      return std::pair(*a->start, -*a->end) < std::pair(*b->start, -*b->end);
    });
    std::vector<const LoopDescription*> around;  // each inside the one before
    for (const LoopDescription* const loop : loops) {
      while (!around.empty() && *around.back()->end < *loop->start)
        around.pop_back();
      if (!around.empty() && *around.back()->end < *loop->end)
        addLoop(FindingKind::loopOverlap, Severity::warning, *loop, *loop->start,
                {*around.back()->start});
      around.push_back(loop);
    }
  }

  ByteView content_;
  const FileDescription& file_;
  std::vector<Finding> findings_;
};

}  // namespace

std::vector<Finding> checkFile(ByteView content, const FileDescription& file) {
  return Checker(content, file).check();
}

bool hasErrors(const std::vector<Finding>& findings) {
  return std::any_of(findings.begin(), findings.end(),
                     [](const Finding& finding) { return finding.severity == Severity::error; });
}

}  // namespace corvana
