// Made faults, each found by its code, and well-formed files, of which nothing is said.

#include <cmath>
#include <numbers>

#include "check/check_file.hpp"
#include "support/audio_builder.hpp"
#include "support/conversion.hpp"

namespace corvana {
namespace {

using namespace test;

/// "error loop-empty @96 #3", one after another: severity, code, offset, frame.
std::string findingsOf(const ByteBuffer& file) {
  std::string found;
  for (const Finding& finding : checkFile(file, describeFile(file))) {
    EXPECT_EQ(findingText(finding, english).find("%@"), std::string::npos);
    EXPECT_FALSE(findingText(finding, english).starts_with(' ')) << findingCode(finding);
    found +=
        line(found.empty() ? "" : ", ", severityCode(finding.severity), " ", findingCode(finding));
    if (finding.offset) found += line(" @", *finding.offset);
    if (finding.frame) found += line(" #", *finding.frame);
  }
  return found;
}

/// 8 frames, at 12 fmt, at 36 data; so the next chunk is at 60.
const ByteBuffer silence = data(ByteBuffer(16));
ByteBuffer wavWith(const ByteBuffer& chunk) {
  return wav({fmt({}), silence, chunk});
}
ByteBuffer looped(const std::vector<SampleLoop>& loops) {
  return wavWith(smpl(60, 0, loops));
}

/// At 12 COMM, at 38 SSND, at 70 the chunk.
ByteBuffer aiffWith(const ByteBuffer& first, const ByteBuffer& second = {}) {
  return aiff({comm({.frames = 8}), ssnd(ByteBuffer(16)), first, second});
}
AiffInstrument keys(const AiffLoop& sustain = {}) {
  return {60, 0, 0, 127, 1, 127, 0, sustain, {}};
}

TEST(CheckFile, FindsEveryMadeFault) {
  const ByteBuffer good = wav({fmt({}), silence});
  const ByteBuffer twoMarkers = mark({{1, 2, "a"}, {2, 6, "b"}});
  const ByteBuffer oddAiff = aiffChunk("odd1", {1});
  const ByteBuffer label =
      wavChunk("LIST", join({text("adtl"), wavChunk("labl", join({le(9, 4), text("nobody's")}))}));
  const struct {
    ByteBuffer file;
    std::string found;
  } cases[] = {
      // Framing.
      {text("RIFF"), "error file-too-short @0"},
      {text("ID3 and so on, no chunks"), "error unknown-file @0"},
      {patched(good, 8, text("AVI ")), "error not-wave @8"},
      {aiff({comm({})}, "8SVX"), "error not-aiff @8"},
      {patched(good, 4, le(90, 4)), "error container-size @4"},
      {patched(good, 4, le(44, 4)), "warning container-size @4"},
      {firstBytes(good, 51), "error container-size @4, error chunk-beyond-file @36"},
      {join({wavWith(text("PAD")), {}}), "note trailing-bytes @60"},
      {wavWith(bytes("01 02 03 04 FF FF FF FF")), "warning chunk-id @60"},
      {wavWith(bytes("01 02 03 04 01 00 00 00 05 'junk' 00 00 00 00")), "error chunk-id @60"},
      {wav({fmt({}), silence, smpl(60, 0), smpl(60, 0)}), "warning chunk-doubled @104"},
      {wavWith(wavChunk("smpl", ByteBuffer(35))), "error chunk-too-short @60"},
      {wavWith(wavChunk("inst", ByteBuffer(6))), "error chunk-too-short @60"},
      {aiffWith(aiffChunk("INST", ByteBuffer(19))), "error chunk-too-short @70"},
      {patched(looped({}), 60 + 8 + 28, le(1, 4)), "error count-beyond-chunk @60"},
      {patched(wavWith(cue({})), 60 + 8, le(2, 4)), "error count-beyond-chunk @60"},
      {patched(aiffWith(twoMarkers), 70 + 8, be(3, 2)), "error count-beyond-chunk @70"},
      {wav({fmt({}), wavChunk("odd1", {1, 2, 3, 4, 5}), silence}), ""},
      {wav({fmt({}), firstBytes(wavChunk("odd1", {1, 2, 3, 4, 5}), 13), silence}),
       "error chunk-padding-missing @36"},
      {wav({fmt({}), firstBytes(wavChunk("odd1", {1}), 9), smpl(60, 0, {{0, 0, 4, 6, 0}}),
            silence}),
       "error chunk-padding-missing @36"},
      {wav({fmt({}), silence, firstBytes(wavChunk("odd1", {1}), 9)}),
       "note chunk-padding-missing @60"},
      {patched(aiffWith(oddAiff, twoMarkers), 79, {7}), "note chunk-padding-not-zero @70"},
      // The samples.
      {wav({silence}), "error format-chunk-missing"},
      {wav({fmt({})}), "error data-chunk-missing"},
      {wav({fmt({.channels = 0}), silence}), "error format-chunk-damaged @12"},
      {wav({fmt({.channels = 3}), silence}), "error format-chunk-damaged @12"},
      {wav({fmt({.channels = 3}), fmt({}), silence}),
       "warning chunk-doubled @36, error format-chunk-damaged @12"},
      {wav({fmt({.bits = 24}), silence}), "warning frame-size @12"},
      {wav({fmt({}), data({1, 2, 3})}), "warning data-not-whole-frames @46 #1"},
      {aiff({ssnd({})}), "error common-chunk-missing"},
      {aiff({comm({.frames = 1})}), "error sound-chunk-missing"},
      {aiff({comm({.channels = 0}), ssnd({})}), "error channels @12"},
      {aiff({comm({.bits = 33}), ssnd({})}), "error bit-depth @12"},
      {aiff({comm({.rate = "00 00 00 00 00 00 00 00 00 00"}), ssnd({})}), "error sample-rate @12"},
      {patched(aiffWith({}), 12 + 10, be(9, 4)), "error frame-count @38 #8"},
      {patched(patched(aiffWith({}), 12 + 10, be(7, 4)), 38 + 12, be(0, 4)),
       "warning frame-count @38 #8"},
      // Loops.
      {looped({{0, 0, 8, 9, 0}}), "error loop-behind-data @104 #9"},
      {looped({{0, 0, 0, 7, 0}, {0, 0, 2, 9, 0}}), "error loop-behind-data @128 #9"},
      {looped({{0, 0, 4, 8, 0}}), "warning loop-end-exclusive @104 #8"},
      {looped({{0, 0, 4, 3, 0}}), "error loop-empty @104 #4"},
      {looped({{0, 3, 4, 6, 0}}), "warning loop-type @104 #4"},
      {looped({{0, 0, 3, 6, 0}, {0, 0, 0, 7, 0}, {0, 0, 1, 4, 0}}), "warning loop-overlap @104 #3"},
      {aiffWith(twoMarkers, inst(keys({1, 1, 3}))), "error loop-marker-missing @112 #0"},
      {aiffWith(twoMarkers, inst(keys({1, 2, 1}))), "error loop-empty @112 #6"},
      {aiffWith(mark({{1, 2, "a"}, {2, 9, "b"}}), inst(keys({1, 1, 2}))),
       "warning marker-behind-data @78 #9, error loop-behind-data @112 #8"},
      {aiffWith(twoMarkers, inst(keys({3, 1, 2}))), "warning loop-type @112 #2"},
      // Markers.
      {wavWith(cue({{1, 2}, {1, 4}})), "warning marker-id-doubled @96 #4"},
      {aiffWith(mark({{1, 2, "a"}, {2, 6, "b"}, {2, 7, "c"}}), inst(keys({1, 1, 2}))),
       "error marker-id-doubled @78 #7"},
      {aiffWith(mark({{0, 2, "a"}})), "warning marker-id @78 #2"},
      {wavWith(cue({{1, 9}})), "warning marker-behind-data @72 #9"},
      {wavWith(label), "warning label-without-marker @68"},
      // Keys.
      {wav({fmt({}), silence, smpl(60, 0), inst(InstrumentChunk{60, -30, 0, 0, 127, 1, 127})}),
       "warning tunings-disagree @68"},
      {wavWith(smpl(128, 0)), "warning root-key @68"},
      {wavWith(inst(InstrumentChunk{60, 51, 0, 0, 127, 1, 127})), "warning fine-tune @69"},
      {wavWith(inst(InstrumentChunk{60, 0, 0, 61, 60, 1, 127})), "warning key-range @68"},
      {aiffWith(inst(AiffInstrument{60, 0, 0, 127, -1, 127, 0, {}, {}})),
       "warning velocity-range @78"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(findingsOf(c.file), c.found);
}

using Wave = double (*)(int frame);
double sine(int frame) {
  return 0.7 * std::sin(2 * std::numbers::pi * frame / 100);
}

/// A loop over `wave`, in 6000 frames of 24 bits, stereo; the left side is silent.
ByteBuffer waveFile(Wave wave, std::uint32_t start, std::uint32_t end, std::uint32_t type) {
  ByteBuffer samples;
  for (int frame = 0; frame < 6000; ++frame)
    appendBytes(samples, join({le(0, 3), le(static_cast<std::uint32_t>(
                                                static_cast<std::int32_t>(wave(frame) * 8388607)),
                                            3)}));
  return wav({fmt({.channels = 2, .blockAlign = 6, .bits = 24}),
              smpl(60, 0, {{0, type, start, end, 0}}), test::data(samples)});
}

TEST(CheckFile, HearsASeamOnlyWhereItStandsOut) {
  const Wave square = [](int frame) { return frame % 2000 < 1000 ? 0.9 : -0.9; };
  const Wave noise = [](int frame) { return std::fmod(frame * 0.7548776662, 1) * 1.8 - 0.9; };
  const Wave slow = [](int frame) { return 0.9 * std::sin(frame * 0.003); };
  const struct {
    Wave wave;
    std::uint32_t start, end, type;
    bool clicks;
  } cases[] = {
      {sine, 1000, 4999, 0, false},   {sine, 1025, 4974, 0, true}, {sine, 1025, 4974, 2, true},
      {sine, 1025, 4974, 1, false},   {sine, 25, 5999, 0, true},   {noise, 1000, 4999, 0, false},
      {noise, 1234, 4321, 0, false},  {slow, 1000, 1523, 0, true}, {slow, 100, 2193, 0, false},
      {square, 1000, 4999, 0, false},
  };
  for (const auto& c : cases)
    EXPECT_EQ(findingsOf(waveFile(c.wave, c.start, c.end, c.type)),
              c.clicks ? line("warning loop-seam @80 #", c.end) : "")
        << c.start << "-" << c.end;
}

TEST(CheckFile, IsSilentOnWellFormedFiles) {
  const ByteBuffer cycle = {0x00, 0x80, 0x00, 0xC0, 0x00, 0x00, 0x00, 0x40, 0xFF, 0x7F};
  const ByteBuffer floats = data(ByteBuffer(24));
  const ByteBuffer names =
      wavChunk("LIST", join({text("adtl"), wavChunk("labl", join({le(1, 4), text("a")}))}));
  const ByteBuffer files[] = {
      wav({fmt({}), data(cycle), smpl(0, 0, {{0, 0, 0, 4, 0}}),
           inst(InstrumentChunk{0, 30, 0, 0, 127, 1, 127})}),
      wav({fmt({.tag = 3, .blockAlign = 4, .bits = 32}), floats, smpl(60, 0, {{5, 0, 0, 5, 2}})}),
      wav({fmt({.tag = 0x11, .channels = 2, .blockAlign = 1024, .bits = 4}), data({1, 2, 3})}),
      wav({names, data({}), cue({{1, 0}}), fmt({})}),
      patched(wav({fmt({}), data(cycle)}), 4, le(45, 4)),
      aiff({comm({})}),
      aiffWith(mark({{1, 0, ""}, {2, 8, ""}}), inst(keys({1, 1, 2}))),
      aiff({comm({.frames = 2, .bits = 32, .compression = "fl32"}), ssnd(ByteBuffer(8))}, "AIFC"),
      aiff({comm({.frames = 1, .compression = "ima4"}), ssnd(ByteBuffer(34))}, "AIFC"),
  };
  for (const ByteBuffer& file : files)
    EXPECT_EQ(findingsOf(file), "") << &file - files;
}

TEST(CheckFile, CountsWhatItDoesNotKeep) {
  const std::vector<SampleLoop> empty(maxListed + 3, SampleLoop{0, 0, 4, 3, 0});
  const ByteBuffer file = looped(empty);
  const std::vector<Finding> findings = checkFile(file, describeFile(file));
  ASSERT_EQ(findings.size(), maxFindings + 1);
  EXPECT_EQ(findingText(findings.back(), english),
            line("Further findings: ", maxListed - maxFindings + 1, "."));
  EXPECT_TRUE(hasErrors(findings));

  ByteBuffer chunks;
  for (std::size_t i = 0; i < maxListed; ++i)
    appendBytes(chunks, wavChunk("junk", {}));
  EXPECT_EQ(findingsOf(wav({chunks, fmt({}), silence})), "note not-checked");
}

}  // namespace
}  // namespace corvana
