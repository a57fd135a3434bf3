// make_seeds DIR: writes small files for the fuzzers to start from, DIR/wav/… and DIR/aiff/…:
// every chunk and every sample format once, so that mutation finds its way from there.
#include <filesystem>
#include <fstream>
#include <string>

#include "convert/carry_out.hpp"
#include "convert/plan_conversion.hpp"
#include "support/audio_builder.hpp"

namespace {

using namespace corvana;
using namespace corvana::test;

void write(const std::filesystem::path& folder, const ByteBuffer& content) {
  static int number = 0;
  std::filesystem::create_directories(folder);
  std::ofstream file(folder / std::to_string(++number), std::ios::binary);
  std::copy(content.begin(), content.end(), std::ostreambuf_iterator<char>(file));
}

/// With a capsule in it, of the other format.
ByteBuffer reversibly(const ByteBuffer& input) {
  return carryOutInMemory(planConversion(input, {.reversible = true}), input);
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) return 2;
  const std::filesystem::path folder = arguments[1];
  const ByteBuffer samples(48, 0x5A);

  const ByteBuffer sampler =
      smpl(60, 0x83D70A3D, {{0, 0, 0, 3, 0}, {0, 1, 1, 2, 0}, {0, 2, 2, 9, 0}, {0, 7, 1, 1, 3}});
  const ByteBuffer keys = inst(InstrumentChunk{60, 12, -6, 0, 127, 1, 127});
  for (std::uint16_t width = 1; width <= 4; ++width) {
    const auto bits = static_cast<std::uint16_t>(8 * width);
    const auto stereo = static_cast<std::uint16_t>(2 * width);
    const auto valid = static_cast<std::uint16_t>(bits - 3);
    write(folder / "wav", wav({fmt({1, 1, 44100, width, bits}), test::data(samples)}));
    write(folder / "wav", wav({fmt({0xFFFE, 2, 48000, stereo, bits, valid}), sampler, keys,
                               cue({{1, 0}, {2, 1}, {3, 6}}), test::data(samples)}));
  }
  write(folder / "wav", wav({fmt({}), test::data({}), smpl(127, 0xFFFFFFFF)}));
  const ByteBuffer wide = fmt({0xFFFE, 1, 48000, 4, 32, 20});
  write(folder / "aiff", reversibly(wav({fmt({}), sampler, test::data(samples)})));
  write(folder / "aiff", reversibly(wav({wide, keys, test::data(samples)})));

  for (const auto& [tag, width] : {std::pair{3, 4}, {3, 8}, {6, 1}, {7, 1}}) {
    const auto bits = static_cast<std::uint16_t>(8 * width);
    const auto code = static_cast<std::uint16_t>(tag);
    const auto frame = static_cast<std::uint16_t>(3 * width);
    write(folder / "wav",
          wav({fmt({0xFFFE, 3, 44100, frame, bits, bits, code}), sampler, test::data(samples)}));
    write(folder / "wav", wav({fmt({code, 1, 44100, 0, bits}), keys, test::data(samples)}));
  }
  write(folder / "wav", bytes("'RIFX' 00000000 'WAVE' 'fmt ' 00000010 0001 0001 0000AC44 00000000 "
                              "0002 0010 'data' 00000004 00010203 'cue ' 0000001C 00000001 "
                              "00000007 00000000 'data' 00000000 00000000 00000001"));
  const ByteBuffer names =
      list("adtl", {cueText("labl", 1, "x\xE4"),
                    cueText("labl", 7,
                            "Gr\xC3\xBC\xC3\x9F"
                            "e"),
                    cueText("note", 1, "why"), cueText("ltxt", 2, std::string(17, 'r'))});
  const ByteBuffer texts = list("INFO", {wavChunk("INAM", text("title")), wavChunk("ICMT", {1})});
  write(folder / "wav", wav({fmt({}), test::data(samples), smpl(60, 0, {{7, 0, 1, 2, 0}}), names,
                             cue({{1, 3}, {2, 1}, {3, 6}}), texts, wavChunk("id3 ", {1})}));

  const ByteBuffer markers = mark({{1, 0, "start"}, {2, 4, "end"}, {3, 2, ""}, {-1, 9, "x"}});
  const ByteBuffer loops = inst(AiffInstrument{60, 10, 0, 127, 1, 127, 200, {1, 1, 2}, {2, 1, 3}});
  for (const int bits : {1, 8, 12, 24, 32})
    write(folder / "aiff", aiff({ssnd(samples), comm({1, 5, bits}), markers, loops}));
  write(folder / "wav", reversibly(aiff({comm({1, 5, 16}), markers, ssnd(samples)})));
  const ByteBuffer notes = comt({{1, "why"}, {0, "free"}, {3, "\xE4"}});
  write(folder / "aiff", aiff({comm({1, 5, 16}), markers, loops, notes, ssnd(samples),
                               aiffChunk("NAME", text("title")), aiffChunk("ANNO", text("\x8A")),
                               aiffChunk("ID3 ", {1})}));
  for (const char* type : {"NONE", "twos", "in24", "in32", "sowt", "fl32", "fl64", "ulaw", "ALAW",
                           "raw ", "42ni", "23ni"}) {
    const int bits = type == std::string_view("raw ") ? 8 : 20;
    const Common common{.channels = 2, .frames = 6, .bits = bits, .compression = type};
    write(folder / "aiff", aiff({comm(common), markers, loops, ssnd(samples, 2)}, "AIFC"));
  }
  return 0;
}
