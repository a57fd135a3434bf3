// Every kernel against the rule in its plainest form.

#include "convert/sample_kernels.hpp"

#include <gtest/gtest.h>
#include <string>

namespace corvana {
namespace {

ByteBuffer numberedBytes(std::size_t count) {
  ByteBuffer bytes(count);
  for (std::size_t i = 0; i < count; ++i)
    bytes[i] = static_cast<std::uint8_t>(i * 37 + i / 256);
  return bytes;
}

ByteBuffer expectedSamples(const SampleConversion& conversion, ByteView source) {
  const auto [sourceWidth, outputWidth, reverseBytes] = conversion;
  ByteBuffer output;
  for (std::size_t sample = 0; sample < source.size(); sample += sourceWidth)
    for (std::size_t k = 0; k < outputWidth; ++k) {
      const std::uint8_t byte = source[sample + (reverseBytes ? sourceWidth - 1 - k : k)];
      output.push_back(sourceWidth == 1 ? byte ^ 0x80 : byte);
    }
  return output;
}

std::string nameOf(const SampleConversion& conversion) {
  return std::to_string(conversion.sourceWidth) + " bytes to " +
         std::to_string(conversion.outputWidth) +
         (conversion.reverseBytes ? " reversed" : " unchanged");
}

class SampleKernels : public testing::TestWithParam<Processor> {
 protected:
  void SetUp() override {
    if (GetParam() > thisProcessor()) GTEST_SKIP() << "not an ability of this processor";
  }

  static void check(const SampleConversion& conversion) {
    SCOPED_TRACE(nameOf(conversion));
    constexpr std::size_t guardSize = 64;
    constexpr std::uint8_t guard = 0xA5;
    const SampleKernel kernel = sampleKernel(conversion, GetParam());
    for (std::size_t samples = 0; samples <= 200; ++samples) {
      const std::size_t offset = samples % 17;  // of both addresses from a round one
      // The source ends with its buffer, so that a sanitizer sees a read beyond it.
      const ByteBuffer buffer = numberedBytes(offset + samples * conversion.sourceWidth);
      const ByteView source = ByteView(buffer).subspan(offset);
      const std::size_t outputSize = samples * conversion.outputWidth;
      ByteBuffer output(offset + outputSize + guardSize, guard);
      kernel(source.data(), output.data() + offset, samples);

      ByteBuffer expected(offset, guard);
      appendBytes(expected, expectedSamples(conversion, source));
      expected.resize(output.size(), guard);
      ASSERT_EQ(output, expected) << samples << " samples";
    }
  }
};

TEST_P(SampleKernels, FollowTheRuleForEveryWidthLengthAndAlignment) {
  for (std::uint32_t sourceWidth = 1; sourceWidth <= 4; ++sourceWidth) {
    for (std::uint32_t outputWidth = 1; outputWidth <= sourceWidth; ++outputWidth)
      check({sourceWidth, outputWidth, true});
    check({sourceWidth, sourceWidth, false});
  }
}

INSTANTIATE_TEST_SUITE_P(Processors, SampleKernels,
                         testing::Values(Processor::anyKind, Processor::shufflesBytes),
                         [](const auto& test) {
                           return test.param == Processor::anyKind ? "AnyKind" : "ShufflesBytes";
                         });

}  // namespace
}  // namespace corvana
