#include "wav/wav_texts.hpp"

#include <algorithm>

#include "vocabulary/chunks.hpp"
#include "vocabulary/unicode.hpp"
#include "wav/wav_format.hpp"

namespace corvana {
namespace {

void addTexts(ByteView list, ByteOrder order, WavTextViews& texts) {
  const std::string_view type = Fields(list, order).id(0);
  if (type != "adtl" && type != "INFO") return;
  const auto add = [&](auto& views, auto id, const Chunk& chunk, std::size_t start) {
    if (chunk.body.size() <= start) return;
    if (views.size() < maxWavTexts)
      views.push_back({id, chunk.body.subspan(start)});
    else
      ++(type == "INFO" ? texts.furtherInfo : texts.furtherCueTexts);
  };
  const auto visit = [&](const Chunk& chunk) {
    const std::uint32_t cueID = Fields(chunk.body, order).u32(0);
    if (type == "INFO") add(texts.info, chunk.id, chunk, 0);
    if (type == "INFO") return;
    if (chunk.id == "labl") add(texts.labels, cueID, chunk, wav_layout::cueTextOffset);
    if (chunk.id == "note") add(texts.notes, cueID, chunk, wav_layout::cueTextOffset);
    if (chunk.id == "ltxt") add(texts.stretches, cueID, chunk, wav_layout::stretchTextOffset);
  };
  walkChunks(list, order, visit, wav_layout::listTypeSize);
}

}  // namespace

ByteOrder orderOfWav(ByteView file) {
  return Fields(file, ByteOrder::little).id(0) == "RIFX" ? ByteOrder::big : ByteOrder::little;
}

WavTextViews findWavTexts(ByteView file) {
  WavTextViews texts;
  const ByteOrder order = orderOfWav(file);
  walkChunks(file, order, [&](const Chunk& chunk) {
    if (chunk.id == "LIST") addTexts(chunk.body, order, texts);
    if (isID3(chunk.id) && !chunk.body.empty()) texts.id3 = chunk.body;
  });
  return texts;
}

std::string decodeWavText(ByteView bytes) {
  const auto end = std::find(bytes.begin(), bytes.end(), std::uint8_t{0});
  std::string text(bytes.begin(), end);
  return isUtf8(text) ? text : decodeLatin1(bytes.first(text.size()));
}

std::string decodeLatin1(ByteView bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes)
    appendUtf8(text, byte >= 0x80 && byte < 0xA0 ? U'\uFFFD' : char32_t{byte});
  return text;
}

bool isID3(std::string_view id) {
  return id == "id3 " || id == "ID3 ";
}

}  // namespace corvana
