// make_seeds DIR: writes small files for the fuzzers to start from, DIR/wav/… and DIR/aiff/…:
// every chunk and every sample format once, so that mutation finds its way from there.
#include <filesystem>
#include <fstream>
#include <string>

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
  const ByteBuffer notes = comt({{1, "why"}, {0, "free"}, {3, "\xE4"}});
  write(folder / "aiff", aiff({comm({1, 5, 16}), markers, loops, notes, ssnd(samples),
                               aiffChunk("NAME", text("title")), aiffChunk("ANNO", text("\x8A")),
                               aiffChunk("ID3 ", {1})}));
  for (const char* type : {"NONE", "twos", "in24", "in32", "sowt", "fl32"}) {
    const Common common{.channels = 2, .frames = 6, .bits = 20, .compression = type};
    write(folder / "aiff", aiff({comm(common), markers, loops, ssnd(samples, 2)}, "AIFC"));
  }
  return 0;
}
