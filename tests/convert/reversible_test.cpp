// Conversions there and back, and what edits and damage in between come to.
#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "convert/crc64.hpp"
#include "convert/plan_conversion.hpp"
#include "support/audio_builder.hpp"
#include "support/conversion.hpp"

namespace corvana {
namespace {

using namespace corvana::test;

struct Outcome {
  ByteBuffer file;
  Summary summary;
  Warnings warnings;
  std::vector<std::string> leftOut;
  bool wasEdited() const {
    return std::any_of(warnings.begin(), warnings.end(), [](const Warning& warning) {
      return warning.kind == WarningKind::editedSince;
    });
  }
};

Outcome reversibly(const ByteBuffer& input, const ConversionOptions& options = {}) {
  ConversionOptions reversible = options;
  reversible.reversible = true;
  const ConversionPlan plan = planConversion(input, reversible);
  return {carryOutInMemory(plan, input), plan.summary, plan.warnings, plan.leftOut};
}

const ByteBuffer sampler =
    smpl(60, 0x12345678, {{0, 2, 0, 1, 3}, {7, 9, 1, 2, 0}, {8, 1, 0, 3, 0}, {0, 0, 9, 9, 0}});
const ByteBuffer instrument = inst(InstrumentChunk{61, -60, 3, 200, 255, 0, 0});
const ByteBuffer eight = bytes("01 80 02 00 FF 7F 04 05");

const std::vector<std::pair<std::string, ByteBuffer>> originals = {
    {"loops that AIFF lacks", wav({fmt({}), wavChunk("bext", text("odd")), data(eight), sampler,
                                   instrument, cue({{9, 2}, {9, 3}})})},
    {"chunks in another order, twice",
     wav({sampler, cue({{1, 0}}), fmt({}), data(eight), sampler, data(firstBytes(eight, 4))})},
    {"bytes behind the end", join({wav({fmt({}), data(eight)}), text("tail")})},
    {"a cut last frame", wav({fmt({}), data(firstBytes(eight, 7))})},
    {"a declared size that is not there", firstBytes(wav({fmt({}), data(eight)}), 46)},
    {"no frames", wav({fmt({}), data({})})},
    {"8 bits, odd", wav({fmt({.blockAlign = 1, .bits = 8}), data(firstBytes(eight, 5))})},
    {"bits that get lost",
     wav({fmt({.tag = 0xFFFE, .blockAlign = 4, .bits = 32, .validBits = 20}), data(eight)})},
    {"AIFF with texts and names",
     aiff({aiffChunk("NAME", text("odd")), comm({.frames = 4}),
           mark({{3, 1, "Anfang"}, {3, 2, ""}}),
           inst(AiffInstrument{.gain = 999, .sustainLoop = {7, 3, 4}}), ssnd(eight)})},
    {"AIFF with samples set off", aiff({ssnd(eight, 2), comm({.frames = 3})})},
    {"AIFF with samples behind its end", aiff({comm({.frames = 3}), ssnd(eight, 200)})},
    {"AIFF with fewer frames than declared", aiff({comm({.frames = 99}), ssnd(eight)})},
    {"sowt", aiff({comm({.frames = 4, .compression = "sowt"}), ssnd(eight)}, "AIFC")},
    {"12 bits", aiff({comm({.frames = 4, .bits = 12}), ssnd(eight)})},
};

TEST(Reversible, GivesBackEveryByte) {
  for (const auto& [name, original] : originals) {
    SCOPED_TRACE(name);
    const Outcome there = reversibly(original);
    EXPECT_FALSE(there.summary.isRestored);
    const Outcome back = reversibly(there.file);
    EXPECT_EQ(back.file, original);
    EXPECT_TRUE(back.summary.isRestored);
    EXPECT_TRUE(back.warnings.empty());
    // To other programs, and without the option, it is a file like any other.
    const ByteBuffer plain = convert(original).file;
    EXPECT_EQ(convert(there.file).file, convert(plain).file);
  }
}

/// Changes the byte where `pattern` begins, `distance` bytes further on.
ByteBuffer edited(ByteBuffer file, std::string_view pattern, std::ptrdiff_t distance) {
  const auto found = std::search(file.begin(), file.end(), pattern.begin(), pattern.end());
  EXPECT_NE(found, file.end()) << pattern;
  *(found + distance) ^= 0x01;
  return file;
}

TEST(Reversible, EditsWin) {
  const struct {
    const char* what;
    std::size_t original;
    std::string_view pattern;
    std::ptrdiff_t distance;
  } rows[] = {
      {"sample", 0, "SSND", 16},           {"lost bits", 7, "SSND", 16},
      {"marker", 0, "MARK", 15},           {"marker's name", 0, "Loop 1", 0},
      {"base note", 0, "INST", 8},         {"rate", 0, "COMM", 17},
      {"rate, a fraction", 0, "COMM", 22}, {"sample in WAV", 8, "data", 8},
      {"gain in WAV", 8, "inst", 10},      {"capsule", 0, "Crvn", 30},
      {"capsule's version", 0, "Crvn", 4}, {"capsule in WAV", 8, "crvn", 100},
  };
  for (const auto& [what, original, pattern, distance] : rows) {
    SCOPED_TRACE(what);
    const ByteBuffer changed =
        edited(reversibly(originals[original].second).file, pattern, distance);
    const Outcome back = reversibly(changed);
    EXPECT_TRUE(back.wasEdited());
    EXPECT_FALSE(back.summary.isRestored);
    // By the ordinary rules, and the way back from there leads to the edited file.
    EXPECT_EQ(reversibly(back.file).file, changed);
  }
}

/// Changes a byte of the original in the capsule, and the sums accordingly.
ByteBuffer forged(ByteBuffer file, const ByteBuffer& original, std::size_t offset) {
  ByteBuffer other = original;
  other[offset] ^= 0x01;
  const std::string_view signature = "Crvn";
  const auto start = std::search(file.begin(), file.end(), signature.begin(), signature.end()) + 4;
  *(start + 40 + static_cast<std::ptrdiff_t>(offset)) ^= 0x01;
  const auto put = [](ByteView summed, ByteBuffer::iterator place) {
    Crc64 sum;
    sum.add(summed);
    ByteBuffer value;
    appendInteger(value, sum.value(), ByteOrder::little);
    std::copy(value.begin(), value.end(), place);
  };
  put(other, start + 4);
  put(ByteView(file).subspan(static_cast<std::size_t>(start - file.begin()),
                             static_cast<std::size_t>(file.end() - start) - 8),
      file.end() - 8);
  return file;
}

TEST(Reversible, GivesNothingButSuchFiles) {
  const ByteBuffer original =
      wav({fmt({}), wavChunk("bext", text("even")), data(bytes("01 02 03 04"))});
  const ByteBuffer file = reversibly(original).file;
  const auto isRestored = [&](std::size_t offset) {
    return reversibly(forged(file, original, offset)).summary.isRestored;
  };
  EXPECT_TRUE(isRestored(44));  // in bext
  for (const std::size_t offset : {0U, 8U, 12U, 20U, 22U, 32U, 48U}) {
    SCOPED_TRACE(offset);
    EXPECT_FALSE(isRestored(offset));
  }
}

TEST(Reversible, NamesWhatOthersHaveAdded) {
  using IDs = std::vector<std::string>;
  const ConversionOptions both{.keepNames = true, .keepTexts = true};
  const ByteBuffer floating = wav({fmt({.tag = 3, .blockAlign = 4, .bits = 32}), data(eight)});
  const ByteBuffer foreign = join({aiffChunk("APPL", text("Else")), aiffChunk("JUNK", {1})});
  const struct {
    const char* what;
    ByteBuffer original;
    ConversionOptions options;
    ByteBuffer added;
    IDs leftOut;
  } rows[] = {
      {"nothing, AIFF-C", floating, {.anyEncoding = true}, {}, {}},
      {"nothing, AIFF", originals[0].second, {}, {}, {}},
      {"nothing, names and texts", originals[8].second, both, {}, {}},
      {"in AIFF",
       originals[0].second,
       {},
       join({foreign, aiffChunk("NAME", {65})}),
       {"APPL", "NAME"}},
      {"in WAV, names and texts", originals[8].second, both, wavChunk("bext", {}), {"bext"}},
      {"in WAV, another INFO",
       originals[8].second,
       both,
       list("INFO", {wavChunk("ISFT", {65})}),
       {"ISFT"}},
      {"in WAV",
       originals[8].second,
       {.keepNames = true},
       join({list("INFO", {wavChunk("INAM", {65})}), wavChunk("crv2", {1})}),
       {"LIST INFO", "crv2"}},
  };
  for (const auto& [what, original, options, added, leftOut] : rows) {
    SCOPED_TRACE(what);
    const Outcome there = reversibly(original, options);
    EXPECT_EQ(there.leftOut, IDs());
    const Outcome back = reversibly(join({there.file, added}));
    EXPECT_EQ(back.file, original);
    EXPECT_EQ(back.leftOut, leftOut);
    EXPECT_EQ(back.warnings.size(), leftOut.empty() ? 0U : 1U);
    // Where such are to be kept, names and texts are edits.
    const bool isText = options.keepTexts == false && !added.empty();
    EXPECT_EQ(reversibly(join({there.file, added}), both).wasEdited(), isText);
  }
}

TEST(Reversible, SumsAsOthersDo) {
  Crc64 sum;
  sum.add(text("12345"));
  sum.add(text("6789"));
  EXPECT_EQ(sum.value(), 0x995D'C9BB'DF19'39FAU);  // the check value of CRC-64/XZ
}

}  // namespace
}  // namespace corvana
