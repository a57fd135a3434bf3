// make_seeds DIR: writes small files for the fuzzers to start from, DIR/wav/… and DIR/aiff/…:
// every chunk and every sample format once, so that mutation finds its way from there.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "support/audio_builder.hpp"

namespace {

namespace fs = std::filesystem;
using namespace corvana;
using namespace corvana::test;

void write(const fs::path& folder, const ByteBuffer& content) {
  static int number = 0;
  fs::create_directories(folder);
  std::ofstream file(folder / std::to_string(++number), std::ios::binary);
  file.write(reinterpret_cast<const char*>(content.data()),
             static_cast<std::streamsize>(content.size()));
}

void writeWavSeeds(const fs::path& folder) {
  const ByteBuffer samples(48, 0x5A);
  const std::vector<SampleLoop> loops = {{.type = loop_type::forward, .start = 0, .end = 3},
                                         {.type = loop_type::alternating, .start = 1, .end = 2},
                                         {.type = loop_type::backward, .start = 2, .end = 9},
                                         {.type = 7, .start = 1, .end = 1, .playCount = 3}};
  const ByteBuffer instrument = inst(InstrumentChunk{60, 12, -6, 0, 127, 1, 127});
  for (std::uint16_t width = 1; width <= 4; ++width) {
    const auto bits = static_cast<std::uint16_t>(8 * width);
    const Format mono{.blockAlign = width, .bits = bits};
    const Format extensible{.tag = format_tag::extensible,
                            .channels = 2,
                            .rate = 48000,
                            .blockAlign = static_cast<std::uint16_t>(2 * width),
                            .bits = bits,
                            .validBits = static_cast<std::uint16_t>(bits - 3)};
    write(folder, wav({fmt(mono), test::data(samples)}));
    write(folder, wav({fmt(extensible), cue({{1, 0}, {2, 1}, {3, 6}}), smpl(60, 0x83D70A3D, loops),
                       instrument, test::data(samples)}));
  }
  write(folder, wav({fmt({}), test::data({}), smpl(127, 0xFFFFFFFF)}));
  write(folder, wav({fmt({.tag = format_tag::floatingPoint}), test::data(samples)}));
}

void writeAiffSeeds(const fs::path& folder) {
  const ByteBuffer samples(48, 0x5A);
  const std::vector<AiffMarker> markers = {
      {1, 0, "start"}, {2, 4, "end"}, {3, 2, ""}, {-1, 9, "x"}};
  AiffInstrument instrument{60, 10, 0, 127, 1, 127, 200, {1, 1, 2}, {2, 1, 3}};
  for (const std::string_view compression : {"", "NONE", "twos", "in24", "in32", "sowt", "fl32"}) {
    const Common common{.channels = compression.empty() ? 1 : 2,
                        .frames = 6,
                        .bits = compression == "in24" ? 20 : 16,
                        .compression = compression};
    write(folder, aiff({comm(common), mark(markers), inst(instrument), ssnd(samples, 2)},
                       compression.empty() ? "AIFF" : "AIFC"));
  }
  for (const int bits : {1, 8, 12, 24, 32})
    write(folder, aiff({ssnd(samples), comm({.frames = 5, .bits = bits}), mark(markers)}));
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    std::fprintf(stderr, "usage: make_seeds DIR\n");
    return 2;
  }
  writeWavSeeds(fs::path(arguments[1]) / "wav");
  writeAiffSeeds(fs::path(arguments[1]) / "aiff");
  return 0;
}
