#include "verify/promised_texts.hpp"

#include <algorithm>
#include <cstddef>
#include <deque>
#include <functional>
#include <optional>

#include "aiff/aiff_texts.hpp"
#include "aiff/mac_roman.hpp"
#include "verify/layout_proof.hpp"
#include "vocabulary/unicode.hpp"
#include "wav/wav_texts.hpp"

namespace corvana {
namespace {

/// Calls `use` with each character, until it gives false.
template <typename Use>
void eachCharacter(std::string_view text, const Use& use) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = std::max<std::size_t>(utf8SequenceLength(text.substr(at)), 1);
    if (!use(text.substr(at, length))) return;
    at += length;
  }
}

using BytesOfCharacters = std::map<std::string, std::uint8_t, std::less<>>;

/// A letter and the mark behind it are the same as the character that follows here.
void addDecomposed(BytesOfCharacters& all) {
  const std::pair<const char*, const char*> pairs[] = {{"\u0300", "aàeèiìoòuùAÀEÈIÌOÒUÙ"},
                                                       {"\u0301", "aáeéiíoóuúAÁEÉIÍOÓUÚ"},
                                                       {"\u0302", "aâeêiîoôuûAÂEÊIÎOÔUÛ"},
                                                       {"\u0303", "aãnñoõAÃNÑOÕ"},
                                                       {"\u0308", "aäeëiïoöuüyÿAÄEËIÏOÖUÜYŸ"},
                                                       {"\u030A", "aåAÅ"},
                                                       {"\u0327", "cçCÇ"}};
  for (const auto& [mark, characters] : pairs) {
    std::string decomposed;
    eachCharacter(characters, [&, mark = mark](std::string_view character) {
      if (decomposed.empty()) {
        decomposed = std::string(character) + mark;
      } else {
        all.emplace(decomposed, all.find(character)->second);
        decomposed.clear();
      }
      return true;
    });
  }
}

/// What each byte of AIFF's characters is, the other way round.
const BytesOfCharacters& bytesOfCharacters() {
  static const auto bytes = [] {
    BytesOfCharacters all;
    for (int byte = 0; byte < 256; ++byte) {
      const std::uint8_t one[] = {static_cast<std::uint8_t>(byte)};
      all.emplace(decodeMacRoman(one), one[0]);
    }
    addDecomposed(all);
    return all;
  }();
  return bytes;
}

/// Calls `use` with the byte of each character of AIFF's, absent where it lacks one, until it gives
/// false.
template <typename Use>
void eachByte(std::string_view text, const Use& use) {
  const auto lengthAt = [&](std::size_t at) { return utf8SequenceLength(text.substr(at)); };
  const BytesOfCharacters& bytes = bytesOfCharacters();
  for (std::size_t at = 0; at < text.size();) {
    std::size_t length = std::max<std::size_t>(lengthAt(at), 1);
    const std::size_t both = length + lengthAt(at + length);
    auto byte = bytes.find(text.substr(at, both));
    if (byte != bytes.end())
      length = both;
    else
      byte = bytes.find(text.substr(at, length));
    if (!use(byte == bytes.end() ? std::nullopt : std::optional(byte->second))) return;
    at += length;
  }
}

/// Texts of AIFF are in its own characters where these are enough, and nobody could take them for
/// UTF-8.
ByteBuffer aiffBytes(std::string_view text, std::size_t most) {
  ByteBuffer own;
  ByteBuffer utf8;
  bool isEnough = true;
  bool isASCII = true;
  eachByte(text, [&](std::optional<std::uint8_t> byte) {
    isEnough = isEnough && byte;
    if (isEnough && own.size() < most) {
      own.push_back(*byte);
      isASCII = isASCII && *byte < 128;
    }
    return isEnough;
  });
  const std::string asText(own.begin(), own.end());
  std::size_t valid = 0;
  while (const std::size_t length = utf8SequenceLength(std::string_view(asText).substr(valid)))
    valid += length;
  if (isEnough && (isASCII || valid < asText.size())) return own;
  eachCharacter(text, [&](std::string_view character) {
    if (utf8.size() + character.size() > most) return false;
    utf8.insert(utf8.end(), character.begin(), character.end());
    return true;
  });
  return utf8;
}

ByteBuffer wavBytes(const std::string& text) {
  ByteBuffer bytes(text.begin(), text.end());
  bytes.push_back(0);
  return bytes;
}

void appendInner(ByteBuffer& list, std::string_view id, const ByteBuffer& body) {
  list.insert(list.end(), id.begin(), id.end());
  appendInteger(list, static_cast<std::uint32_t>(body.size()), ByteOrder::little);
  list.insert(list.end(), body.begin(), body.end());
  if (list.size() % 2 != 0) list.push_back(0);
}

/// What tells chunks of one ID apart: the type of a list.
std::string kindOf(std::string_view id, ByteView body) {
  std::string kind(id);
  if (id == "LIST") kind += Fields(body, ByteOrder::little).id(0);
  return kind;
}

}  // namespace

std::string promisedMarkerName(const std::string& text) {
  std::string name;
  int count = 0;
  eachByte(text, [&](std::optional<std::uint8_t> byte) {
    const std::uint8_t one[] = {byte.value_or('?')};
    name += decodeMacRoman(one);
    return ++count < 255;
  });
  return name;
}

PromisedChunk promisedComments(const std::vector<NumberedText>& comments) {
  ByteBuffer body;
  appendInteger(body, static_cast<std::uint16_t>(comments.size()), ByteOrder::big);
  for (const auto& [marker, text] : comments) {
    const ByteBuffer bytes = aiffBytes(text, 65'535);
    appendInteger(body, std::uint32_t{0}, ByteOrder::big);
    appendInteger(body, static_cast<std::uint16_t>(marker), ByteOrder::big);
    appendInteger(body, static_cast<std::uint16_t>(bytes.size()), ByteOrder::big);
    body.insert(body.end(), bytes.begin(), bytes.end());
    if (body.size() % 2 != 0) body.push_back(0);
  }
  return {"COMT", std::move(body)};
}

PromisedChunk promisedCueTexts(const std::vector<NumberedText>& labels,
                               const std::vector<NumberedText>& notes) {
  ByteBuffer list = {'a', 'd', 't', 'l'};
  const auto append = [&](std::string_view id, const NumberedText& entry) {
    const ByteBuffer text = wavBytes(entry.second);
    ByteBuffer body;
    body.reserve(sizeof(std::uint32_t) + text.size());
    appendInteger(body, static_cast<std::uint32_t>(entry.first), ByteOrder::little);
    appendBytes(body, text);
    appendInner(list, id, body);
  };
  for (const NumberedText& label : labels)
    append("labl", label);
  for (const NumberedText& note : notes)
    append("note", note);
  return {"LIST", std::move(list)};
}

std::vector<PromisedChunk> promisedTextsOfAiff(ByteView wav) {
  const WavTextViews views = findWavTexts(wav);
  PromisedRoom room;
  std::vector<PromisedChunk> chunks;
  const auto promise = [&](const char* id, ByteView text) {
    if (isThere(text) && room.holds(text.size()))
      chunks.push_back({id, aiffBytes(decodeWavText(text), ~std::size_t{0})});
  };
  ByteView title;
  ByteView artist;
  ByteView rights;
  for (const InfoTextView& view : views.info) {
    if (!isThere(view.text)) continue;
    if (view.id == "INAM") title = view.text;
    if (view.id == "IART") artist = view.text;
    if (view.id == "ICOP") rights = view.text;
  }
  promise("NAME", title);
  promise("AUTH", artist);
  promise("(c) ", rights);
  for (const InfoTextView& view : views.info)
    if (view.id == "ICMT") promise("ANNO", view.text);
  if (!views.id3.empty() && room.holds(views.id3.size()))
    chunks.push_back({"ID3 ", ByteBuffer(views.id3.begin(), views.id3.end())});
  return chunks;
}

std::vector<PromisedChunk> promisedTextsOfWav(ByteView aiff) {
  const AiffTextViews views = findAiffTexts(aiff);
  PromisedRoom room;
  ByteBuffer list = {'I', 'N', 'F', 'O'};
  const auto promise = [&](const char* id, ByteView text) {
    if (isThere(text) && room.holds(text.size()))
      appendInner(list, id, wavBytes(decodeAiffText(text)));
  };
  const auto lastOf = [&](std::string_view id) {
    const auto last =
        std::find_if(views.texts.rbegin(), views.texts.rend(),
                     [&](const AiffTextView& view) { return view.id == id && isThere(view.text); });
    return last == views.texts.rend() ? ByteView() : last->text;
  };
  promise("INAM", lastOf("NAME"));
  promise("IART", lastOf("AUTH"));
  promise("ICOP", lastOf("(c) "));
  for (const AiffTextView& view : views.texts)
    if (view.id == "ANNO") promise("ICMT", view.text);
  for (const AiffCommentView& comment : views.comments)
    if (comment.marker == 0) promise("ICMT", comment.text);
  std::vector<PromisedChunk> chunks;
  if (list.size() > 4) chunks.push_back({"LIST", std::move(list)});
  if (!views.id3.empty() && room.holds(views.id3.size()))
    chunks.push_back({"id3 ", ByteBuffer(views.id3.begin(), views.id3.end())});
  return chunks;
}

void compareTexts(ByteView output, ByteOrder order, const std::vector<PromisedChunk>& promised,
                  Differences& differences) {
  std::map<std::string, std::deque<const PromisedChunk*>, std::less<>> missing;
  for (const PromisedChunk& chunk : promised)
    missing[kindOf(chunk.id, chunk.body)].push_back(&chunk);
  walkChunks(output, order, [&](const Chunk& chunk) {
    const auto next = missing.find(kindOf(chunk.id, chunk.body));
    if (next == missing.end() || next->second.empty()) return;
    const ByteBuffer& expected = next->second.front()->body;
    next->second.pop_front();
    compareChunkSize(chunk, expected.size(), differences);
    const auto [found, other] =
        std::mismatch(chunk.body.begin(), chunk.body.end(), expected.begin(), expected.end());
    if (found == chunk.body.end() || other == expected.end()) return;
    const auto offset = static_cast<std::size_t>(found - chunk.body.begin());
    differences.add({.kind = DifferenceKind::chunkText,
                     .chunk = std::string(chunk.id),
                     .found = std::int64_t{*found},
                     .expected = std::int64_t{*other},
                     .offset = chunk.bodyOffset + offset});
  });
  for (const auto& [kind, chunks] : missing)
    for (const PromisedChunk* chunk : chunks)
      differences.add({.kind = DifferenceKind::chunkMissing, .chunk = chunk->id});
}

}  // namespace corvana
