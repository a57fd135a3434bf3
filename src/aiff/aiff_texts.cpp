#include "aiff/aiff_texts.hpp"

#include <algorithm>

#include "aiff/aiff_format.hpp"
#include "aiff/mac_roman.hpp"
#include "vocabulary/chunks.hpp"
#include "vocabulary/unicode.hpp"

namespace corvana {
namespace {

bool isInMacRoman(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = utf8SequenceLength(text);
    if (length == 0 || !macRomanByte(utf8Scalar(text.substr(0, length)))) return false;
    text.remove_prefix(length);
  }
  return true;
}

bool isASCII(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace

AiffTextViews findAiffTexts(ByteView file) {
  AiffTextViews texts;
  walkChunks(file, ByteOrder::big, [&](const Chunk& chunk) {
    if (chunk.id == "COMT") {
      const auto comments = parseCommentChunk(chunk.body);
      const std::size_t read = std::min(comments.size(), maxAiffTexts - texts.comments.size());
      texts.comments.insert(texts.comments.end(), comments.begin(),
                            comments.begin() + static_cast<std::ptrdiff_t>(read));
      texts.hasFurtherComments = texts.hasFurtherComments || read < comments.size();
    } else if (isTextOfAiff(chunk.id)) {
      texts.hasFurtherTexts = texts.texts.size() == maxAiffTexts;
      if (!texts.hasFurtherTexts) texts.texts.push_back({chunk.id, chunk.body});
    } else if (chunk.id == "ID3 " && !chunk.body.empty()) {
      texts.id3 = chunk.body;
    }
  });
  return texts;
}

std::vector<AiffCommentView> parseCommentChunk(ByteView body) {
  if (body.size() < aiff_layout::commentCountSize) return {};
  const std::size_t count = Fields(body, ByteOrder::big).u16(0);
  ByteView rest = body.subspan(aiff_layout::commentCountSize);
  std::vector<AiffCommentView> comments;
  while (comments.size() < count && rest.size() >= aiff_layout::commentHeaderSize) {
    const Fields fields(rest, ByteOrder::big);
    const std::size_t length = fields.u16(6);
    rest = rest.subspan(aiff_layout::commentHeaderSize);
    comments.push_back({fields.i16(4), rest.first(std::min(length, rest.size()))});
    rest = rest.subspan(std::min(length + length % 2, rest.size()));
  }
  return comments;
}

std::string decodeAiffText(ByteView bytes) {
  const auto end = std::find(bytes.begin(), bytes.end(), std::uint8_t{0});
  std::string text(bytes.begin(), end);
  return isUtf8(text) ? text : decodeMacRoman(bytes.first(text.size()));
}

std::string encodeAiffText(std::string_view text, std::size_t most) {
  if (const std::string composed = composedForMacRoman(text); isInMacRoman(composed)) {
    std::string bytes = encodeMacRoman(composed);
    if (bytes.size() > most) bytes.resize(most);
    if (isASCII(bytes) || !isUtf8(bytes)) return bytes;
  }
  std::size_t size = 0;
  while (size < text.size()) {
    const std::size_t length = utf8SequenceLength(text.substr(size));
    if (length == 0 || size + length > most) break;
    size += length;
  }
  return std::string(text.substr(0, size));
}

bool isTextOfAiff(std::string_view id) {
  return id == "NAME" || id == "AUTH" || id == "(c) " || id == "ANNO";
}

}  // namespace corvana
