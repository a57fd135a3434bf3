// Whatever is converted reversibly comes back to the last byte, and whatever a capsule says, its
// file is converted or refused like any other.
#include "convert/crc64.hpp"
#include "convert/plan_conversion.hpp"
#include "fuzz/conversion.hpp"
#include "vocabulary/chunks.hpp"

using namespace corvana;

namespace {

constexpr ConversionOptions reversible{.reversible = true};

/// Without a right sum at its end, nobody would look into a capsule.
void correctSum(ByteBuffer& file) {
  const Fields header(file, ByteOrder::big);
  const bool isAIFF = header.id(0) == "FORM";
  walkChunks(file, isAIFF ? ByteOrder::big : ByteOrder::little, [&](const Chunk& chunk) {
    const std::size_t start = isAIFF ? 4 : 0;
    if (chunk.id != (isAIFF ? "APPL" : "crvn") || chunk.body.size() < start + 8) return;
    Crc64 sum;
    sum.add(chunk.body.subspan(start, chunk.body.size() - start - 8));
    ByteBuffer value;
    appendInteger(value, sum.value(), ByteOrder::little);
    const std::size_t end = chunk.bodyOffset + chunk.body.size();
    std::copy(value.begin(), value.end(), file.data() + end - value.size());
  });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  ByteBuffer input(data, data + size);
  correctSum(input);
  const auto output = fuzz::convert(planConversion, input, reversible);
  if (!output) return 0;
  if (planConversion(input, reversible).summary.isRestored) return 0;
  const auto back = fuzz::convert(planConversion, *output, reversible);
  assert(back == input);
  return 0;
}
