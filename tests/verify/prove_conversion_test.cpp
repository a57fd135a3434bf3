// Outputs with damage, of which the proof has to say exactly what is wrong.

#include "verify/prove_conversion.hpp"

#include <gtest/gtest.h>
#include <span>

#include "support/audio_builder.hpp"
#include "support/conversion.hpp"
#include "verify/difference_texts.hpp"
#include "verify/sample_proof.hpp"

namespace corvana {
namespace {

using namespace test;

const ByteBuffer samples = bytes("000010 111120 222230 333340 444450 555560 66667F 777780 8888FF");

const ByteBuffer wavInput = wav({fmt({1, 1, 44100, 3, 24}), data(samples), cue({{7, 5}, {8, 8}}),
                                 smpl(60, 0, {{0, 0, 1, 3, 0}, {0, 1, 2, 6, 0}, {0, 2, 0, 8, 5}}),
                                 test::inst(InstrumentChunk{60, -10, -6, 10, 100, 5, 120})});

const ByteBuffer aiffInput =
    aiff({comm({.frames = 9, .bits = 20}), ssnd(samples),
          mark({{1, 1, "a"}, {2, 4, "b"}, {3, 5, "c"}, {4, 8, "d"}, {5, 9, "e"}}),
          test::inst(AiffInstrument{60, 10, 0, 127, 1, 127, 200, {1, 1, 2}, {2, 1, 4}})});

/// A difference in each part: code, place, what was found and what was expected.
std::string proved(const ByteBuffer& input, const ByteBuffer& output,
                   Producer producer = Producer::anyProgram,
                   const ConversionOptions& options = {}) {
  std::string found;
  for (const Difference& d : proveConversion(input, output, {producer, options}, {}).kept) {
    found += (found.empty() ? "" : "; ") + std::string(differenceCode(d));
    for (const auto& place : {d.number, d.frame, d.channel})
      if (place) found += line(" ", *place);
    for (const auto& value : {d.found, d.expected})
      if (value) found += line("/", messageValueText(*value, english));
  }
  return found;
}

/// Where the body of a chunk starts; that of no chunk is the whole file.
std::ptrdiff_t offsetOf(const ByteBuffer& file, std::string_view chunk) {
  if (chunk.empty()) return 0;
  const ByteBuffer id = text(chunk);
  return std::search(file.begin(), file.end(), id.begin(), id.end()) - file.begin() + 8;
}

/// Bytes of a chunk that others take the place of.
struct Damage {
  std::string_view chunk;
  std::ptrdiff_t offset;
  std::ptrdiff_t size;
  std::string_view replacement;  ///< as for bytes()
  std::string expected;
};

ByteBuffer damaged(ByteBuffer file, const Damage& damage) {
  const auto place = file.begin() + offsetOf(file, damage.chunk) + damage.offset;
  const ByteBuffer replacement = bytes(damage.replacement);
  file.insert(file.erase(place, place + damage.size), replacement.begin(), replacement.end());
  return file;
}

const Damage aiffDamages[] = {
    // Sound
    {"SSND", 8, 1, "11", "sample 0 1/1114112/1048576"},
    {"SSND", 8 + 14, 1, "00", "sample 4 1/5260288/5260356"},
    {"SSND", 8 + 26, 1, "81", "sample 8 1/-30591/-30584"},
    {"SSND", 8 + 3, 6, "302222 201111", "sample 1 1/3154466/2101521; sample 2 1/2101521/3154466"},
    {"COMM", 1, 1, "02", "channels/2/1; sound-size/27/54"},
    {"COMM", 5, 1, "08", "frame-count/8/9; sound-size/27/24"},
    {"COMM", 7, 1, "17", "bit-depth/23/24"},
    {"COMM", 8, 10, "40 0E BB 80 00 00 00 00 00 00", "sample-rate/48000/44100"},
    {"COMM", 8, 10, "C0 0E AC 44 00 00 00 00 00 00",
     "chunk-field/c00eac44000000000000/400eac44000000000000"},
    // Loops
    {"MARK", 7, 1, "02", "loop-start 1/2/1"},
    {"MARK", 2 + 20 + 5, 1, "05", "loop-end 1/5/4"},
    {"MARK", 2 + 20 + 18 + 20 + 18 + 20 + 5, 1, "08", "loop-end 3/8/9"},
    {"INST", 9, 1, "02", "loop-type 1/2/1"},
    {"INST", 11, 1, "03", "loop-start 1/2/1"},
    {"INST", 13, 1, "63", "loop-end 1/–/4"},
    {"INST", 15, 1, "00", "loop-missing 2"},
    // Markers
    {"MARK", 2 + 114 + 5, 1, "07", "marker-position 7/7/5"},
    {"MARK", 2 + 114 + 7, 1, "'Q'", "marker-name 7/Que 7/Cue 7"},
    {"MARK", 2 + 114 + 1, 1, "63", "marker-id 7/99/7"},
    {"MARK", 0, 2, "00 07", "marker-missing 8/8; chunk-size/140/128"},
    {"MARK", 2 + 12 + 7, 1, "21", "padding/33/0"},
    // Instrument
    {"INST", 0, 1, "3D", "root-key/61/60"},
    {"INST", 1, 1, "0A", "tuning/10/-10"},
    {"INST", 2, 4, "0B 63 06 77",
     "low-key/11/10; high-key/99/100; low-velocity/6/5; high-velocity/119/120"},
    {"INST", 6, 2, "00 06", "gain/6/-6"},
    {"INST", -8, 4, "'NIST'", "loop-missing 1; loop-missing 2; instrument-missing"},
    // Bytes
    {"", 7, 1, "00", "container-size/0/250"},
    {"SSND", 35, 1, "FF", "padding/255/0"},
    {"SSND", 7, 1, "04", "chunk-field/4/0"},
    {"SSND", 35, 1, "", "container-size/250/249; padding-missing"},
    {"SSND", 36, 0, "00 00 00", "container-size/250/253; stray-bytes/3"},
    {"SSND", -4, 4, "00000025", "sound-size/28/27; chunk-size/37/36"},
    {"SSND", -4, 4, "00000021", "sound-size/25/27; padding/136/0; stray-bytes/2"},
    {"", 8, 4, "'AIFC'", "common-chunk-missing"},
    {"", 0, 4, "'RIFF'", "not-aiff"},
    {"COMM", 18, 0, "'NAME' 00000001 41 00", "container-size/250/260"},
};

const Damage wavDamages[] = {
    {"data", 0, 1, "11", "sample 0 1/17/16"},
    {"data", 26, 1, "09", "sample 8 1/624895/-7829249"},
    {"fmt ", 2, 1, "02", "format-chunk-damaged"},
    {"fmt ", 4, 1, "45", "sample-rate/44101/44100; chunk-field/132300/132303"},
    {"fmt ", 18, 1, "13", "bit-depth/19/20"},
    {"fmt ", 0, 2, "03 00", "floating-point"},
    {"fmt ", 8, 1, "00", "chunk-field/132096/132300"},
    {"fmt ", 12, 1, "00", "chunk-field/0/3"},
    {"fmt ", 14, 1, "14", "chunk-field/20/24"},
    {"fmt ", 20, 1, "03", "chunk-field/3/4"},
    {"fmt ", 30, 1, "11", "chunk-field/000000001100800000aa00389b71/000000001000800000aa00389b71"},
    {"data", -4, 1, "1C", "sound-size/28/27"},
    {"data", 27, 1, "01", "padding/1/0"},
    {"data", 27, 1, "",
     "loop-missing 1; loop-missing 2; cue-point-missing 1/5; cue-point-missing 2/9; "
     "instrument-missing; sampler-missing; container-size/256/255; padding-missing"},
    {"cue ", 4 + 20, 1, "06", "cue-point-position 1/6/5"},
    {"cue ", 4, 1, "03", "cue-point-id 1/3/1"},
    {"cue ", 0, 1, "01", "cue-point-missing 2/9; chunk-size/52/28"},
    {"smpl", 12, 1, "3C", "unity-note/60/59"},
    {"smpl", 19, 1, "E0", "pitch-fraction/3764807270/3865470566"},
    {"smpl", 8, 1, "00", "sample-period/22528/22676"},
    {"smpl", 28, 1, "01", "loop-missing 2; chunk-size/84/60"},
    {"smpl", 36, 1, "05", "loop-id 1/5/0"},
    {"smpl", 40, 1, "01", "loop-type 1/1/0"},
    {"smpl", 44, 1, "02", "loop-start 1/2/1"},
    {"smpl", 72, 1, "08", "loop-end 2/8/7"},
    {"smpl", 76, 1, "01", "loop-fraction 2/1/0"},
    {"smpl", 80, 1, "01", "loop-play-count 2/1/0"},
    {"inst", 0, 3, "3D F6 7E", "root-key/61/60; tuning/-10/10; gain/126/127"},
    {"inst", 3, 4, "01 7E 02 7E",
     "low-key/1/0; high-key/126/127; low-velocity/2/1; high-velocity/126/127"},
    {"inst", 7, 1, "01", "padding/1/0"},
    {"inst", 7, 1, "", "container-size/256/255; padding-missing"},
    {"inst", -8, 4, "'tsni'", "instrument-missing"},
    {"", 4, 1, "02", "container-size/258/256"},
};

TEST(Proof, NamesEveryDamageOfAnOutput) {
  const struct {
    const ByteBuffer& input;
    std::span<const Damage> damages;
  } outputs[] = {{wavInput, aiffDamages}, {aiffInput, wavDamages}};
  for (const auto& [input, damages] : outputs) {
    const ByteBuffer output = convert(input).file;
    EXPECT_EQ(proved(input, output, Producer::thisProgram), "");
    for (const Damage& damage : damages)
      EXPECT_EQ(proved(input, damaged(output, damage)), damage.expected)
          << damage.chunk << "+" << damage.offset << ": " << damage.replacement;
  }
}

TEST(Proof, OtherProgramsMayOrderAddAndWiden) {
  const ByteBuffer bigSamples = bytes("123456 89ABCD");
  const ByteBuffer littleSamples = bytes("563412 CDAB89");
  const ByteBuffer wavFile = wav({fmt({1, 1, 44100, 3, 24}), data(littleSamples)});
  const ByteBuffer aiffFile = aiff({comm({.frames = 2, .bits = 24}), ssnd(bigSamples)});
  const ByteBuffer sound = patched(ssnd(join({{1, 2}, littleSamples}), 2), 12, be(0, 4));
  const ByteBuffer name = aiffChunk("NAME", {'x'});
  const ByteBuffer common = comm({.frames = 2, .bits = 24, .compression = "sowt"});
  const ByteBuffer sowt =
      aiff({aiffChunk("FVER", be(0xA2805140U, 4)), sound, name, common}, "AIFC");
  EXPECT_EQ(proved(wavFile, sowt), "");
  EXPECT_EQ(proved(wavFile, sowt, Producer::thisProgram),
            "form-type/AIFC/AIFF; chunk-order/FVER SSND NAME COMM /COMM SSND ; chunk-field/2/0");
  EXPECT_EQ(proved(wavFile, aiff({common, sound}, "AIFC")), "format-version");
  const ByteBuffer format = patched(fmt({0xFFFE, 1, 44100, 4, 32, 24}), 16, le(176400, 4));
  const ByteBuffer wide = data(bytes("00563412 01CDAB89"));
  EXPECT_EQ(proved(aiffFile, wav({wavChunk("LIST", {1}), wide, format})),
            "sample 1 1/-1985229567/-1985229568");
}

TEST(Proof, NamesDamageOfAnyEncoding) {
  const ConversionOptions options{.anyEncoding = true};
  const ByteBuffer wavFile = wav({fmt({3, 1, 44100, 8, 64}), data(bytes("0102030405060708"))});
  const ByteBuffer aiffFile =
      aiff({comm({1, 3, 8, Common().rate, "ulaw"}), ssnd(bytes("80 7F FF"))}, "AIFC");
  const std::pair<const ByteBuffer&, Damage> cases[] = {
      {wavFile, {"SSND", 15, 1, "02", "sample 0 1/0807060504030202/0807060504030201"}},
      {wavFile, {"COMM", 7, 1, "20", "chunk-field/32/64"}},
      {wavFile,
       {"COMM", 18, 4, "'FL64'",
        "chunk-field/464c36341536342d62697420666c6f6174696e6720"
        "706f696e74/666c36341536342d62697420666c6f6174696e672070"
        "6f696e74"}},
      {wavFile, {"FVER", 3, 1, "41", "format-version"}},
      {aiffFile, {"data", 1, 1, "7E", "sample 1 1/7e/7f"}},
      {aiffFile, {"fact", 0, 1, "04", "chunk-field/4/3"}},
      {aiffFile, {"fact", -8, 4, "'tcaf'", "chunk-order/fmt  tcaf data /fmt  fact data "}},
      {aiffFile, {"fmt ", 0, 1, "06", "encoding/a-law/mu-law"}},
  };
  for (const auto& [input, damage] : cases) {
    const ByteBuffer output = convert(input, options).file;
    EXPECT_EQ(proved(input, output, Producer::thisProgram, options), "");
    EXPECT_EQ(proved(input, damaged(output, damage), Producer::thisProgram, options),
              damage.expected);
  }
}

/// Samples are compared many at once, in steps of their own for each width.
TEST(Proof, FindsOneBitAnywhere) {
  constexpr std::uint32_t count = 61;
  for (std::uint32_t form = 0; form < 4 * 4 * 4; ++form) {
    const std::uint32_t width = form % 4 + 1;
    const std::uint32_t inputWidth = form / 4 % 4 + 1;
    if (inputWidth < width) continue;
    const ByteOrder order = form / 16 % 2 == 0 ? ByteOrder::little : ByteOrder::big;
    const bool isReversed = form / 32 == 0;
    const bool isTurned = isReversed && width == 1;
    ByteBuffer input(std::size_t{count} * inputWidth);
    ByteBuffer output(std::size_t{count} * width);
    for (std::size_t i = 0; i < input.size(); ++i)
      input[i] = static_cast<std::uint8_t>(i * i * 7 >> 3);
    // `place` counts from the most significant byte.
    const auto at = [](std::uint32_t sample, std::uint32_t place, std::uint32_t size, bool isBig) {
      return sample * size + (isBig ? place : size - 1 - place);
    };
    const bool isBig = order == ByteOrder::big;
    for (std::uint32_t sample = 0; sample < count; ++sample)
      for (std::uint32_t place = 0; place < width; ++place)
        output[at(sample, place, width, isBig != isReversed)] = static_cast<std::uint8_t>(
            input[at(sample, place, inputWidth, isBig)] ^ (isTurned && place == 0 ? 0x80 : 0));
    const auto differences = [&](std::uint32_t first) {
      const ByteOrder other = isBig != isReversed ? ByteOrder::big : ByteOrder::little;
      Differences found;
      compareSamples({input, std::size_t{first} * inputWidth, inputWidth, order, isTurned},
                     {output, std::size_t{first} * width, width, other, false},
                     {count - first, 1, width}, found, {});
      return found.areThere() ? line(found.count, " in ", *found.kept[0].frame) : "none";
    };
    SCOPED_TRACE(form);
    for (std::uint32_t first = 0; first < count; ++first)
      ASSERT_EQ(differences(first), "none");
    for (std::size_t i = 0; i < output.size(); ++i) {
      output[i] ^= 0x40;
      ASSERT_EQ(differences(0), line(1, " in ", i / width));
      output[i] ^= 0x40;
    }
  }
}

TEST(Proof, KeepsAThousandDifferencesAndCountsTheRest) {
  const ByteBuffer file = aiff({comm({.frames = 6000, .bits = 8}), ssnd(ByteBuffer(6000))});
  const ByteBuffer same = data(ByteBuffer(6000, 0x80));
  const ByteBuffer other = data(ByteBuffer(6000, 0x7F));
  const auto count = [&](const ByteBuffer& chunk) {
    const ByteBuffer format = patched(fmt({1, 1, 44100, 1, 8}), 16, le(44100, 4));
    const Differences all =
        proveConversion(file, wav({format, chunk}), {Producer::thisProgram}, {});
    return line(all.kept.size(), " of ", all.count);
  };
  EXPECT_EQ(count(same), "0 of 0");
  EXPECT_EQ(count(other), "1000 of 6000");
}

}  // namespace
}  // namespace corvana
