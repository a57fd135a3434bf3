#include "convert/left_out.hpp"

#include <algorithm>
#include <initializer_list>
#include <set>

#include "aiff/aiff_texts.hpp"
#include "convert/map_texts.hpp"
#include "vocabulary/chunks.hpp"
#include "vocabulary/screen_text.hpp"
#include "wav/wav_format.hpp"

namespace corvana {
namespace {

bool isOneOf(std::string_view id, std::initializer_list<std::string_view> ids) {
  return std::find(ids.begin(), ids.end(), id) != ids.end();
}

bool onlyFillsSpace(std::string_view id) {
  return isOneOf(id, {"JUNK", "junk", "PAD ", "FLLR"});
}

void addLeftOutOfList(ByteView list, ByteOrder order, const ConversionOptions& options,
                      LeftOutChunks& leftOut) {
  if (list.size() <= wav_layout::listTypeSize) return;
  const std::string_view type = Fields(list, order).id(0);
  const bool hasNames = type == "adtl";
  if (hasNames ? !options.keepNames : type != "INFO" || !options.keepTexts)
    return leftOut.add("LIST " + std::string(type));
  const auto visit = [&](const Chunk& chunk) {
    // Of a stretch, the length is lost.
    const bool isKept = hasNames ? isOneOf(chunk.id, {"labl", "note"}) : hasCounterpart(chunk.id);
    if (!isKept && !chunk.body.empty()) leftOut.add(chunk.id);
  };
  walkChunks(list, order, visit, wav_layout::listTypeSize);
}

/// The last tag of a file is kept, those ahead of it are left out.
class KeptTag {
 public:
  explicit KeptTag(LeftOutChunks& leftOut) : leftOut_(leftOut) {}
  void add(const Chunk& chunk) {
    if (chunk.body.empty()) return;
    if (!last_.empty()) leftOut_.add(last_);
    last_ = chunk.id;
  }

 private:
  LeftOutChunks& leftOut_;
  std::string_view last_;
};

}  // namespace

void LeftOutChunks::add(std::string_view id) {
  if (ids_.size() == maxLeftOut) return;
  const std::string readable = readableID(std::string(id));
  if (seen_.insert(readable).second) ids_.push_back(readable);
}

void addLeftOutOfWav(ByteView file, const ConversionOptions& options, LeftOutChunks& leftOut,
                     std::uint64_t capsuleOffset) {
  const ByteOrder order = orderOfWav(file);
  KeptTag tag(leftOut);
  walkChunks(file, order, [&](const Chunk& chunk) {
    if (isOneOf(chunk.id, {"fmt ", "data", "smpl", "inst", "cue ", "fact"}) ||
        onlyFillsSpace(chunk.id) || chunk.bodyOffset == capsuleOffset)
      return;
    if (chunk.id == "LIST") return addLeftOutOfList(chunk.body, order, options, leftOut);
    if (options.keepTexts && isID3(chunk.id)) return tag.add(chunk);
    leftOut.add(chunk.id);
  });
}

void addEarlierLabels(const WavTextViews& texts, LeftOutChunks& leftOut) {
  std::set<std::uint32_t> named;
  for (const CueTextView& label : texts.labels)
    if (!isEmptyText(label.text) && !named.insert(label.cueID).second) leftOut.add("labl");
}

void addLeftOutOfAiff(ByteView file, const ConversionOptions& options, LeftOutChunks& leftOut,
                      std::uint64_t capsuleOffset) {
  const auto isLost = [&](const AiffCommentView& comment) {
    return !comment.text.empty() && !(comment.marker == 0 ? options.keepTexts : options.keepNames);
  };
  KeptTag tag(leftOut);
  walkChunks(file, ByteOrder::big, [&](const Chunk& chunk) {
    if (isOneOf(chunk.id, {"COMM", "SSND", "MARK", "INST", "FVER"}) || onlyFillsSpace(chunk.id) ||
        chunk.bodyOffset == capsuleOffset)
      return;
    if (chunk.id == "COMT") {
      const auto comments = parseCommentChunk(chunk.body);
      if (std::any_of(comments.begin(), comments.end(), isLost)) leftOut.add(chunk.id);
      return;
    }
    if (options.keepTexts && chunk.id == "ID3 ") return tag.add(chunk);
    if (!options.keepTexts || !isTextOfAiff(chunk.id)) leftOut.add(chunk.id);
  });
}

void setLeftOut(const LeftOutChunks& leftOut, const ConversionOptions& options,
                ConversionPlan& plan) {
  const bool isRestored = plan.summary.isRestored;
  if (options.reversible && !isRestored) return;  // the capsule holds everything
  plan.leftOut = leftOut.ids();
  if ((options.keepsMore() || isRestored) && !plan.leftOut.empty())
    addWarning(plan.warnings, leftOutWarning(plan.leftOut));
}

}  // namespace corvana
