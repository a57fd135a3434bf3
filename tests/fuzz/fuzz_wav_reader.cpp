// The WAV reader: any bytes give a record that is true to its description, or a ConversionError.
#include "fuzz/require.hpp"
#include "vocabulary/errors.hpp"
#include "wav/wav_reader.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const corvana::WavInfo info = corvana::parseWav({data, size});
    REQUIRE(info.channels >= 1);
    REQUIRE(info.sampleRate != 0);
    REQUIRE(info.bytesPerSample >= 1 && info.bytesPerSample <= 4);
    REQUIRE(info.bitsPerSample >= 1 && info.bitsPerSample <= 8 * info.bytesPerSample);
    REQUIRE(info.dataOffset <= size && info.dataSize <= size - info.dataOffset);
    REQUIRE(info.cuePoints.size() * corvana::wav_layout::cuePointSize <= size);
    if (info.loops) REQUIRE(info.loops->size() * corvana::wav_layout::loopSize <= size);
  } catch (const corvana::ConversionError& error) {
    REQUIRE(!error.errorDescription().empty());
  }
  return 0;
}
