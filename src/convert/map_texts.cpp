#include "convert/map_texts.hpp"

#include <algorithm>
#include <iterator>

namespace corvana {
namespace {

/// The texts that either format has once.
struct Counterparts {
  std::string_view wav;
  std::string_view aiff;
};
constexpr Counterparts singleTexts[] = {{"INAM", "NAME"}, {"IART", "AUTH"}, {"ICOP", "(c) "}};
constexpr Counterparts comments = {"ICMT", "ANNO"};

/// Takes texts over, one after another.
template <typename Text, std::string (*decode)(ByteView)>
class TextMapper {
 public:
  TextMapper(TextRoom& room, std::vector<Text>& mapped, LeftOutChunks& leftOut)
      : room_(room), mapped_(mapped), leftOut_(leftOut) {}

  void add(std::string_view from, std::string_view to, ByteView text) {
    if (isEmptyText(text)) return;
    if (!room_.take(text.size())) return leftOut_.add(from);
    mapped_.push_back({std::string(to), decode(text)});
  }

  /// The last of those that have this ID.
  template <typename Views>
  void addLast(std::string_view from, std::string_view to, const Views& views) {
    ByteView last;
    for (const auto& view : views) {
      if (view.id != from || isEmptyText(view.text)) continue;
      if (!last.empty()) leftOut_.add(from);
      last = view.text;
    }
    add(from, to, last);
  }

 private:
  TextRoom& room_;
  std::vector<Text>& mapped_;
  LeftOutChunks& leftOut_;
};

void mapTag(std::string_view id, ByteView tag, TextRoom& room, ByteBuffer& mapped,
            LeftOutChunks& leftOut) {
  if (tag.empty()) return;
  if (!room.take(tag.size())) return leftOut.add(id);
  mapped.assign(tag.begin(), tag.end());
}

}  // namespace

bool hasCounterpart(std::string_view infoID) {
  return infoID == comments.wav ||
         std::any_of(std::begin(singleTexts), std::end(singleTexts),
                     [&](const Counterparts& text) { return text.wav == infoID; });
}

void mapTexts(const WavTextViews& wav, AiffTexts& aiff, LeftOutChunks& leftOut) {
  TextRoom room;
  TextMapper<AiffText, decodeWavText> mapper(room, aiff.texts, leftOut);
  for (const Counterparts& text : singleTexts)
    mapper.addLast(text.wav, text.aiff, wav.info);
  for (const InfoTextView& text : wav.info)
    if (text.id == comments.wav) mapper.add(text.id, comments.aiff, text.text);
  if (wav.furtherInfo > 0) leftOut.add("LIST INFO");
  mapTag("id3 ", wav.id3, room, aiff.id3, leftOut);
}

void mapTexts(const AiffTextViews& aiff, WavTexts& wav, LeftOutChunks& leftOut) {
  TextRoom room;
  TextMapper<InfoText, decodeAiffText> mapper(room, wav.info, leftOut);
  for (const Counterparts& text : singleTexts)
    mapper.addLast(text.aiff, text.wav, aiff.texts);
  for (const AiffTextView& text : aiff.texts)
    if (text.id == comments.aiff) mapper.add(text.id, comments.wav, text.text);
  for (const AiffCommentView& comment : aiff.comments)
    if (comment.marker == 0) mapper.add("COMT", comments.wav, comment.text);
  if (aiff.hasFurtherTexts) leftOut.add(comments.aiff);
  mapTag("ID3 ", aiff.id3, room, wav.id3, leftOut);
}

}  // namespace corvana
