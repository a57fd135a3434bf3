// Assembles WAV and AIFF files field by field, independently of the program's own writers, so
// that every field can also be given a value that no writer would.
#pragma once

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <vector>

#include "aiff/aiff_format.hpp"
#include "vocabulary/bytes.hpp"
#include "wav/wav_format.hpp"

namespace corvana::test {

/// Two hex digits a byte, text between apostrophes: "'RIFF' 24 00 00 00".
inline ByteBuffer bytes(std::string_view notation) {
  ByteBuffer result;
  const auto digit = [](char c) { return c <= '9' ? c - '0' : std::tolower(c) - 'a' + 10; };
  for (std::size_t i = 0; i < notation.size(); ++i) {
    if (notation[i] == '\'') {
      while (notation[++i] != '\'')
        result.push_back(static_cast<std::uint8_t>(notation[i]));
    } else if (std::isxdigit(static_cast<unsigned char>(notation[i])) != 0) {
      result.push_back(static_cast<std::uint8_t>(digit(notation[i]) << 4 | digit(notation[i + 1])));
      ++i;
    }
  }
  return result;
}

template <typename Number>
ByteBuffer be(Number number, unsigned width) {
  auto value = static_cast<std::uint64_t>(number);
  ByteBuffer result(width);
  for (unsigned i = width; i-- > 0; value >>= 8)
    result[i] = static_cast<std::uint8_t>(value);
  return result;
}

inline ByteBuffer le(std::uint64_t value, unsigned width) {
  const ByteBuffer reversed = be(value, width);
  return {reversed.rbegin(), reversed.rend()};
}

inline ByteBuffer join(std::initializer_list<ByteBuffer> parts) {
  ByteBuffer result;
  for (const ByteBuffer& part : parts)
    result.insert(result.end(), part.begin(), part.end());
  return result;
}

inline ByteBuffer text(std::string_view characters) {
  return {characters.begin(), characters.end()};
}

inline ByteBuffer le32(std::initializer_list<std::uint32_t> values) {
  ByteBuffer result;
  for (const std::uint32_t value : values)
    result = join({result, le(value, 4)});
  return result;
}

inline ByteBuffer firstBytes(ByteBuffer buffer, std::size_t count) {
  buffer.resize(count);
  return buffer;
}

inline ByteBuffer bodyOf(const ByteBuffer& chunk) {
  return {chunk.begin() + 8, chunk.end()};
}

inline ByteBuffer patched(ByteBuffer buffer, std::ptrdiff_t offset, const ByteBuffer& patch) {
  std::copy(patch.begin(), patch.end(), buffer.begin() + offset);
  return buffer;
}

// WAV, little-endian. Every builder of a chunk gives header, body and pad byte; the fields that
// nobody reads are filled with noise.

inline ByteBuffer wavChunk(std::string_view id, const ByteBuffer& body) {
  return join({text(id), le(body.size(), 4), body, ByteBuffer(body.size() % 2)});
}

inline ByteBuffer wav(std::initializer_list<ByteBuffer> chunks) {
  const ByteBuffer content = join(chunks);
  return join({text("RIFF"), le(content.size() + 4, 4), text("WAVE"), content});
}

struct Format {
  std::uint16_t tag = format_tag::pcm;
  std::uint16_t channels = 1;
  std::uint32_t rate = 44100;
  std::uint16_t blockAlign = 2;
  std::uint16_t bits = 16;
  std::optional<std::uint16_t> validBits = std::nullopt;  ///< makes it the extensible form
  std::uint16_t subFormat = format_tag::pcm;
};

inline ByteBuffer fmt(const Format& f) {
  const ByteBuffer body = join(
      {le(f.tag, 2), le(f.channels, 2), le32({f.rate, 0xBAD}), le(f.blockAlign, 2), le(f.bits, 2)});
  if (!f.validBits) return wavChunk("fmt ", body);
  return wavChunk("fmt ", join({body, le(22, 2), le(*f.validBits, 2), le(0, 4), le(f.subFormat, 2),
                                bytes("00 00 00 00 10 00 80 00 00 AA 00 38 9B 71")}));
}

inline ByteBuffer data(const ByteBuffer& samples) {
  return wavChunk("data", samples);
}

inline ByteBuffer smpl(std::uint32_t note, std::uint32_t fraction,
                       const std::vector<SampleLoop>& loops = {}) {
  const auto count = static_cast<std::uint32_t>(loops.size());
  ByteBuffer body = le32({7, 8, 9, note, fraction, 10, 11, count, 12});
  for (const SampleLoop& loop : loops)
    appendBytes(body, le32({loop.cueID, loop.type, loop.start, loop.end, 13, loop.playCount}));
  return wavChunk("smpl", body);
}

inline ByteBuffer cue(const std::vector<CuePoint>& points) {
  ByteBuffer body = le(points.size(), 4);
  for (const CuePoint& point : points)
    appendBytes(body,
                join({le32({point.id, 0xBAD}), text("slnt"), le32({14, 15, point.position})}));
  return wavChunk("cue ", body);
}

/// A labl or note chunk, or one of the texts of a file.
inline ByteBuffer cueText(std::string_view id, std::uint32_t cueID, std::string_view characters) {
  return wavChunk(id, join({le(cueID, 4), text(characters), {0}}));
}

inline ByteBuffer list(std::string_view type, std::initializer_list<ByteBuffer> chunks) {
  return wavChunk("LIST", join({text(type), join(chunks)}));
}

inline ByteBuffer inst(const InstrumentChunk& i) {
  return wavChunk("inst", {i.unshiftedNote, static_cast<std::uint8_t>(i.fineTune),
                           static_cast<std::uint8_t>(i.gain), i.lowNote, i.highNote, i.lowVelocity,
                           i.highVelocity});
}

// AIFF, big-endian.

inline ByteBuffer aiffChunk(std::string_view id, const ByteBuffer& body) {
  return join({text(id), be(body.size(), 4), body, ByteBuffer(body.size() % 2)});
}

inline ByteBuffer aiff(std::initializer_list<ByteBuffer> chunks, std::string_view form = "AIFF") {
  const ByteBuffer content = join(chunks);
  return join({text("FORM"), be(content.size() + 4, 4), text(form), content});
}

struct Common {
  int channels = 1;
  std::uint32_t frames = 0;
  int bits = 16;
  std::string_view rate = "40 0E AC 44 00 00 00 00 00 00";
  std::string_view compression = {};  ///< four characters for AIFF-C
};

inline ByteBuffer comm(const Common& c) {
  return aiffChunk("COMM", join({be(c.channels, 2), be(c.frames, 4), be(c.bits, 2), bytes(c.rate),
                                 text(c.compression)}));
}

inline ByteBuffer ssnd(const ByteBuffer& samples, std::uint32_t offset = 0) {
  return aiffChunk("SSND", join({be(offset, 4), be(0xBAD, 4), samples}));
}

inline ByteBuffer mark(const std::vector<AiffMarker>& markers) {
  ByteBuffer body = be(markers.size(), 2);
  for (const AiffMarker& marker : markers)
    body = join({body, be(marker.id, 2), be(marker.position, 4), be(marker.name.size(), 1),
                 text(marker.name), ByteBuffer(marker.name.size() % 2 == 0 ? 1 : 0)});
  return aiffChunk("MARK", body);
}

inline ByteBuffer comt(const std::vector<AiffComment>& comments) {
  ByteBuffer body = be(comments.size(), 2);
  for (const AiffComment& comment : comments)
    body = join({body, be(0xBAD, 4), be(comment.marker, 2), be(comment.text.size(), 2),
                 text(comment.text), ByteBuffer(comment.text.size() % 2)});
  return aiffChunk("COMT", body);
}

inline ByteBuffer inst(const AiffInstrument& i) {
  ByteBuffer body = join({be(i.baseNote, 1), be(i.detune, 1), be(i.lowNote, 1), be(i.highNote, 1),
                          be(i.lowVelocity, 1), be(i.highVelocity, 1), be(i.gain, 2)});
  for (const AiffLoop& loop : {i.sustainLoop, i.releaseLoop})
    body = join({body, be(loop.playMode, 2), be(loop.beginMarker, 2), be(loop.endMarker, 2)});
  return aiffChunk("INST", body);
}

}  // namespace corvana::test
