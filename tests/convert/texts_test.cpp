#include <gtest/gtest.h>

#include "aiff/aiff_texts.hpp"
#include "support/audio_builder.hpp"
#include "support/conversion.hpp"
#include "verify/difference_texts.hpp"
#include "verify/prove_conversion.hpp"
#include "wav/wav_texts.hpp"

namespace corvana {
namespace {

using namespace test;

const ConversionOptions names{.keepNames = true};
const ConversionOptions texts{.keepTexts = true};
const ConversionOptions both{.keepNames = true, .keepTexts = true};

const ByteBuffer sound = join({fmt({}), data(ByteBuffer(200))});
const ByteBuffer common = comm({.frames = 100});
const ByteBuffer aiffSound = join({common, ssnd(ByteBuffer(200))});

/// All names and texts, in file order, and whether the proof agrees.
std::string keptIn(const ByteBuffer& input, const ByteBuffer& output,
                   const ConversionOptions& options) {
  std::string found;
  if (output.at(0) == 'F') {
    for (const AiffMarker& marker : parseAiff(output).markers)
      found += line(marker.id, " ", marker.name, " @", marker.position, ", ");
    const AiffTextViews views = findAiffTexts(output);
    for (const AiffCommentView& comment : views.comments)
      found += line("COMT ", comment.marker, " ", decodeAiffText(comment.text), ", ");
    for (const AiffTextView& view : views.texts)
      found += line(view.id, " ", decodeAiffText(view.text), ", ");
    found += std::string(views.id3.begin(), views.id3.end());
  } else {
    const WavInfo info = parseWav(output);
    for (const SampleLoop loop : info.loops.value_or(SampleLoopView()))
      found += line("loop ", loop.cueID, ", ");
    for (const CuePoint point : info.cuePoints)
      found += line(point.id, " @", point.position, ", ");
    const WavTextViews views = findWavTexts(output);
    for (const CueTextView& label : views.labels)
      found += line("labl ", label.cueID, " ", decodeWavText(label.text), ", ");
    for (const CueTextView& note : views.notes)
      found += line("note ", note.cueID, " ", decodeWavText(note.text), ", ");
    for (const InfoTextView& view : views.info)
      found += line(view.id, " ", decodeWavText(view.text), ", ");
    found += std::string(views.id3.begin(), views.id3.end());
  }
  const ProofTerms terms{Producer::thisProgram, options};
  for (const Difference& difference : proveConversion(input, output, terms, {}).kept)
    found += differenceText(difference, english);
  return found;
}

struct Case {
  const char* name;
  ByteBuffer file;
  std::string kept;
  std::string warnings = {};
  ConversionOptions options = both;
};

void check(const Case& c) {
  const Converted converted = convert(c.file, c.options);
  EXPECT_EQ(keptIn(c.file, converted.file, c.options), c.kept) << c.name;
  EXPECT_EQ(converted.warnings, c.warnings) << c.name;
}

ByteBuffer labl(std::uint32_t id, std::string_view name) {
  return cueText("labl", id, name);
}

TEST(Texts, NamesOfCuePointsAndLoopsBecomeMarkers) {
  const std::string long256(256, 'n');
  const auto file = [](const std::vector<SampleLoop>& loops, const std::vector<CuePoint>& points,
                       const ByteBuffer& lists) {
    return wav({sound, smpl(60, 0, loops), cue(points), lists});
  };
  const Case cases[] = {
      {"labels",
       file({}, {{7, 10}, {3, 20}, {4, 30}},
            list("adtl", {labl(3, "Chorus"), labl(7, "a"), labl(7, "Verse")})),
       "1 Verse @10, 2 Chorus @20, 3 Cue 4 @30, ", "Left out: chunks 'labl'.\n"},
      {"UTF-8 and Latin-1",
       file({}, {{1, 1}, {2, 2}}, list("adtl", {labl(1, "“ä”"), labl(2, "\xE4")})),
       "1 “ä” @1, 2 ä @2, "},
      {"accents behind their letters",
       file({}, {{1, 1}, {2, 2}},
            list("adtl", {labl(1, "Cafe\u0301 A\u030A c\u0327"), labl(2, "x\u0301"),
                          cueText("note", 1, "n\u0303")})),
       "1 Café Å ç @1, 2 x? @2, COMT 1 ñ, ",
       "Names with characters that AIFF lacks: 1 (first: ID 2) – such characters are replaced by "
       "'?'.\n"},
      {"characters that lack", file({}, {{1, 1}}, list("adtl", {labl(1, "x日y")})), "1 x?y @1, ",
       "Names with characters that AIFF lacks: 1 (first: ID 1) – such characters are replaced by "
       "'?'.\n"},
      {"cut, and not within a character",
       file({}, {{1, 1}}, list("adtl", {labl(1, long256 + "ä")})),
       "1 " + long256.substr(1) + " @1, ",
       "Names or notes longer than AIFF holds: 1 (first: ID 1) – cut.\n"},
      {"a loop by its cue point ID", file({{9, 0, 5, 9, 0}}, {}, list("adtl", {labl(9, "Hold")})),
       "1 Hold @5, 2 Loop 1 End @10, "},
      {"a loop by a cue point in its place",
       file({{9, 0, 5, 9, 0}}, {{9, 5}, {2, 10}}, list("adtl", {labl(9, "Hold"), labl(2, "Out")})),
       "1 Hold @5, 2 Out @10, "},
      {"an ID that is only a number",
       file({{1, 0, 5, 9, 0}}, {{1, 50}}, list("adtl", {labl(1, "Mid")})),
       "1 Loop 1 Start @5, 2 Loop 1 End @10, 3 Mid @50, "},
      {"names in one place",
       file({}, {{1, 5}, {2, 5}, {3, 5}, {4, 5}},
            list("adtl", {labl(2, "A"), labl(3, "B"), labl(4, "A")})),
       "1 A @5, 2 B @5, "},
      {"notes",
       file({{8, 0, 5, 9, 0}}, {{1, 7}},
            list("adtl",
                 {cueText("note", 1, "ü"), cueText("note", 1, "日"), cueText("note", 8, "hold")})),
       "1 Loop 1 Start @5, 2 Loop 1 End @10, 3 Cue 1 @7, COMT 1 hold, COMT 3 ü, COMT 3 日, "},
      {"regions",
       file({}, {{1, 7}}, list("adtl", {cueText("ltxt", 1, std::string(16, 0) + "Part")})),
       "1 Part @7, ", "Left out: chunks 'ltxt'.\n"},
      {"no place",
       file({}, {{1, 101}},
            list("adtl", {labl(1, "behind"), labl(2, "stray"), cueText("note", 3, "stray")})),
       "", "Names or notes without a place in the output: 3 (first: ID 1) – left out.\n"},
      {"names alone",
       file({}, {{1, 7}}, join({list("adtl", {labl(1, "A")}), list("INFO", {labl(9, "")})})),
       "1 A @7, ", "Left out: chunks 'LIST INFO'.\n", names},
      {"the ordinary rules",
       file({}, {{1, 7}}, list("adtl", {labl(1, "A")})),
       "1 Cue 1 @7, ",
       "",
       {}},
  };
  for (const Case& c : cases)
    check(c);
}

TEST(Texts, NamesOfMarkersBecomeLabels) {
  const auto file = [](const std::vector<AiffMarker>& markers, const AiffLoop& sustain,
                       const AiffLoop& release, const std::vector<AiffComment>& comments = {}) {
    return aiff({aiffSound, mark(markers),
                 inst(AiffInstrument{60, 0, 0, 127, 1, 127, 0, sustain, release}),
                 comments.empty() ? ByteBuffer() : comt(comments)});
  };
  const std::vector<AiffMarker> usual = {
      {1, 5, "Loop 1 Start"}, {2, 9, "Loop 1 End"}, {3, 50, "\x8A"}};
  const Case cases[] = {
      {"usual names of loops", file(usual, {1, 1, 2}, {}), "loop 0, 1 @50, labl 1 ä, "},
      {"names of loops", file({{4, 50, "x"}, {5, 5, "in"}, {6, 9, "out"}}, {1, 5, 6}, {}),
       "loop 1, 1 @5, 2 @9, 3 @50, labl 1 in, labl 2 out, labl 3 x, "},
      {"a second loop without one",
       file({{1, 5, "in"}, {2, 9, ""}, {3, 3, ""}}, {1, 1, 2}, {1, 3, 2}),
       "loop 1, loop 2, 1 @5, labl 1 in, "},
      {"a marker behind the sound", file({{1, 101, "late"}, {2, 100, "last"}}, {}, {}),
       "1 @100, labl 1 last, ",
       "Names or notes without a place in the output: 1 (first: ID 1) – left out.\n"},
      {"comments",
       file(usual, {1, 1, 2}, {}, {{2, "why"}, {0, "free"}, {3, "\xC3\xA4"}, {77, "gone"}}),
       "loop 0, 1 @9, 2 @50, labl 2 ä, note 1 why, note 2 ä, ICMT free, ",
       "Names or notes without a place in the output: 1 (first: ID 77) – left out.\n"},
      {"texts alone", file(usual, {1, 1, 2}, {}, {{2, "why"}, {0, "free"}}),
       "loop 0, 1 @50, ICMT free, ", "Left out: chunks 'COMT'.\n", texts},
  };
  for (const Case& c : cases)
    check(c);
}

TEST(Texts, TextsOfTheFileHaveCounterparts) {
  const auto info = [](std::string_view id, std::string_view content) {
    return wavChunk(id, text(content));
  };
  const ByteBuffer nested = list("INFO", {list("INFO", {info("INAM", "nested")})});
  const Case cases[] = {
      {"WAV",
       wav({sound,
            list("INFO", {info("ICMT", "one"), info("IART", "Zoë"), info("INAM", "日本"),
                          info("ICMT", "two"), info("ICOP", "2026"), info("IGNR", "x")}),
            wavChunk("id3 ", text("tag")), wavChunk("bext", {1})}),
       "NAME 日本, AUTH Zoë, (c)  2026, ANNO one, ANNO two, tag",
       "Left out: chunks 'IGNR', 'bext'.\n"},
      {"the last one counts", wav({sound, list("INFO", {info("INAM", "a"), info("INAM", "b")})}),
       "NAME b, ", "Left out: chunks 'INAM'.\n"},
      {"what UTF-8 would be mistaken for", wav({sound, list("INFO", {info("INAM", "√ü")})}),
       "NAME √ü, "},
      {"accents behind their letters",
       wav({sound, list("INFO", {info("INAM", "Zoe\u0308"), info("IART", "o\u0308日")})}),
       "NAME Zoë, AUTH o\u0308日, "},
      {"nested", wav({sound, nested}), "", "Left out: chunks 'LIST'.\n"},
      {"AIFF",
       aiff({aiffSound, aiffChunk("ANNO", text("n\x9F")), aiffChunk("NAME", text("日本")),
             aiffChunk("AUTH", text("me\0x")), aiffChunk("(c) ", {}), aiffChunk("MIDI", {1}),
             aiffChunk("ID3 ", text("tag"))}),
       "INAM 日本, IART me, ICMT nü, tag", "Left out: chunks 'MIDI'.\n"},
  };
  for (const Case& c : cases)
    check(c);
}

TEST(Texts, ChunksThatAreLeftOutHaveNames) {
  const auto leftOut = [](const ByteBuffer& file, const ConversionOptions& options = {}) {
    const auto plan = file[0] == 'F' ? planAIFFToWAV : planWAVToAIFF;
    return plan(file, options).leftOut;
  };
  using IDs = std::vector<std::string>;
  const ByteBuffer junk = join({wavChunk("JUNK", {1}), wavChunk("fact", {1}), list("INFO", {})});
  EXPECT_EQ(leftOut(wav({sound, junk})), IDs());
  EXPECT_EQ(leftOut(wav({wavChunk("a\nb\xFF", {}), sound, list("adtl", {junk}),
                         wavChunk("bext", {1}), wavChunk("bext", {1})})),
            (IDs{"a?b?", "LIST adtl", "bext"}));
  EXPECT_EQ(leftOut(aiff({aiffSound, aiffChunk("NAME", {1}), comt({})})), IDs{"NAME"});
  const ByteBuffer tag = wavChunk("id3 ", {1});
  EXPECT_EQ(leftOut(wav({sound, tag, tag}), texts), IDs{"id3 "}) << "the last one is kept";

  ByteBuffer many;
  for (std::uint32_t id = 0x41414141; id < 0x41414141 + 20 * 256; ++id)
    if ((id & 0xFF) - 0x20 < 0x5F) appendBytes(many, join({be(id, 4), be(0, 4)}));
  EXPECT_EQ(leftOut(wav({sound, many})).size(), 1000U);
  const std::string warnings = convert(wav({sound, many}), names).warnings;
  EXPECT_NE(warnings.find("'AAAH' and 992 more."), std::string::npos) << warnings;
}

TEST(Texts, EveryByteOfThemIsProved) {
  const ByteBuffer inputs[] = {
      wav({sound, smpl(60, 0, {{9, 0, 5, 9, 0}}), cue({{1, 7}}), wavChunk("id3 ", {1}),
           list("adtl", {labl(1, "ab"), labl(9, "hold"), cueText("note", 1, "odd")}),
           list("INFO", {wavChunk("INAM", text("odd")), wavChunk("ICMT", text("even"))})}),
      aiff({aiffSound, mark({{1, 5, "in"}, {2, 9, "out"}}), comt({{1, "why"}, {0, "free"}}),
            aiffChunk("NAME", text("title")), aiffChunk("ID3 ", {1, 2})})};
  for (const ByteBuffer& input : inputs) {
    const ByteBuffer output = convert(input, both).file;
    const std::size_t end = 12 + 8 + 16 + 8 + 200;  // of the samples of a WAV file
    for (std::size_t at = output[0] == 'F' ? 38 : end; at < output.size(); ++at) {
      ByteBuffer damaged = output;
      damaged[at] ^= 0x15;
      const ProofTerms terms{Producer::thisProgram, both};
      EXPECT_TRUE(proveConversion(input, damaged, terms, {}).areThere()) << at;
    }
    EXPECT_TRUE(
        proveConversion(input, convert(input).file, {Producer::anyProgram, both}, {}).areThere());
  }
  const ByteBuffer output = convert(inputs[1], names).file;
  const ByteBuffer another = wav({list("INFO", {}), {output.begin() + 12, output.end()}});
  EXPECT_FALSE(proveConversion(inputs[1], another, {Producer::anyProgram, names}, {}).areThere());
}

TEST(Texts, HostileFilesCostNoMoreThanTheyHold) {
  ByteBuffer labels = text("adtl");
  ByteBuffer comments = text("INFO");
  for (std::uint32_t i = 0; i < 70'000; ++i) {
    appendBytes(labels, cueText(i % 2 == 0 ? "labl" : "note", i % 9, "name"));
    appendBytes(comments, wavChunk("ICMT", {'x'}));
  }
  std::vector<CuePoint> points(40'000, CuePoint{8, 1});
  const ByteBuffer tag = wavChunk("id3 ", ByteBuffer(std::size_t{17} << 20));
  const ByteBuffer file =
      join({wav({sound, cue(points)}), wavChunk("LIST", labels), wavChunk("LIST", comments), tag});
  const ConversionPlan plan = planWAVToAIFF(file, both);
  EXPECT_EQ(plan.summary.markerCount, 1);
  EXPECT_EQ(plan.leftOut, (std::vector<std::string>{"labl", "LIST INFO", "id3 "}));
  EXPECT_EQ(std::get<AiffContent>(plan.content).texts.texts.size(), 65'536U);
  const ProofTerms terms{Producer::thisProgram, both};
  EXPECT_FALSE(proveConversion(file, carryOutInMemory(plan, file), terms, {}).areThere());
}

}  // namespace
}  // namespace corvana
