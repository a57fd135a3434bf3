// The AIFF reader: any bytes give a record that is true to its description, or a ConversionError.
#include "aiff/aiff_reader.hpp"
#include "fuzz/require.hpp"
#include "vocabulary/errors.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const corvana::AiffInfo info = corvana::parseAiff({data, size});
    REQUIRE(info.channels >= 1 && info.channels <= 32767);
    REQUIRE(info.sampleSize >= 1 && info.sampleSize <= 32);
    REQUIRE(info.sampleRate >= 1 && info.sampleRate < 4e9);
    REQUIRE(info.soundOffset <= size && info.soundSize <= size - info.soundOffset);
    REQUIRE(info.markers.size() * corvana::aiff_layout::markerHeaderSize <= size);
  } catch (const corvana::ConversionError& error) {
    REQUIRE(!error.errorDescription().empty());
  }
  return 0;
}
