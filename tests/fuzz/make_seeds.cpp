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

  const ByteBuffer markers = mark({{1, 0, "start"}, {2, 4, "end"}, {3, 2, ""}, {-1, 9, "x"}});
  const ByteBuffer loops = inst(AiffInstrument{60, 10, 0, 127, 1, 127, 200, {1, 1, 2}, {2, 1, 3}});
  for (const int bits : {1, 8, 12, 24, 32})
    write(folder / "aiff", aiff({ssnd(samples), comm({1, 5, bits}), markers, loops}));
  write(folder / "wav", reversibly(aiff({comm({1, 5, 16}), markers, ssnd(samples)})));
  for (const char* type : {"NONE", "twos", "in24", "in32", "sowt", "fl32"}) {
    const Common common{.channels = 2, .frames = 6, .bits = 20, .compression = type};
    write(folder / "aiff", aiff({comm(common), markers, loops, ssnd(samples, 2)}, "AIFC"));
  }
  return 0;
}
