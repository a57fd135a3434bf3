#include "convert/sample_kernels.hpp"

#include <cstring>

namespace corvana {

void convertSamples(const SampleConversion& conversion, ByteView source,
                    std::span<std::uint8_t> output) {
  const std::size_t sourceWidth = conversion.sourceWidth;
  const std::size_t outputWidth = conversion.outputWidth;
  const std::size_t samples = output.size() / outputWidth;
  if (sourceWidth == 1) {
    for (std::size_t s = 0; s < samples; ++s)
      output[s] = source[s] ^ 0x80U;
  } else if (!conversion.reverseBytes) {
    std::memcpy(output.data(), source.data(), output.size());
  } else {
    for (std::size_t s = 0; s < samples; ++s)
      for (std::size_t k = 0; k < outputWidth; ++k)
        output[s * outputWidth + k] = source[s * sourceWidth + sourceWidth - 1 - k];
  }
}

}  // namespace corvana
