// The readers: any bytes give a record that is true to its description, or a ConversionError.
#include "aiff/aiff_reader.hpp"
#include "fuzz/require.hpp"
#include "vocabulary/messages.hpp"
#include "wav/wav_reader.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace corvana;
  try {
    if (size > 0 && data[0] == 'F') {
      const AiffInfo info = parseAiff({data, size});
      REQUIRE(info.channels >= 1 && info.channels <= 32767);
      REQUIRE(info.sampleSize >= 1 && info.sampleSize <= 32);
      REQUIRE(info.sampleRate >= 1 && info.sampleRate < 4e9);
      REQUIRE(info.soundOffset <= size && info.soundSize <= size - info.soundOffset);
      REQUIRE(info.markers.size() * aiff_layout::markerHeaderSize <= size);
    } else {
      const WavInfo info = parseWav({data, size});
      REQUIRE(info.channels >= 1 && info.sampleRate != 0);
      REQUIRE(info.bytesPerSample >= 1 && info.bytesPerSample <= 4);
      REQUIRE(info.bitsPerSample >= 1 && info.bitsPerSample <= 8 * info.bytesPerSample);
      REQUIRE(info.dataOffset <= size && info.dataSize <= size - info.dataOffset);
      REQUIRE(info.cuePoints.size() * wav_layout::cuePointSize <= size);
      if (info.loops) REQUIRE(info.loops->size() * wav_layout::loopSize <= size);
    }
  } catch (const ConversionError& error) {
    REQUIRE(!errorDescription(error, Language()).empty());
  }
  return 0;
}
