// Any bytes at all can be described and checked, and whatever is said of them has a text.
#include <cassert>

#include "check/check_file.hpp"
#include "convert/plan_conversion.hpp"
#include "fuzz/conversion.hpp"

using namespace corvana;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const ByteView content(data, size);
  const FileDescription file = describeFile(content);
  assert(file.chunks.chunks.size() <= file.chunks.count && file.chunks.end <= size);
  assert(file.loops.size() <= file.loopCount);
  assert(file.dataOffset + file.dataSize <= size);
  for (const ChunkEntry& chunk : file.chunks.chunks)
    assert(chunk.offset + chunkHeaderSize + chunk.presentSize <= size);
  const std::vector<Finding> findings = checkFile(content, file);
  for (const Finding& finding : findings)
    assert(!findingText(finding, Language()).empty() && *findingCode(finding) != '\0');

  // What is no error to the linter converts, unless it is of a kind that is not supported.
  if (hasErrors(findings)) return 0;
  try {
    (void)planConversion(content);
  } catch (const ConversionError& error) {
    assert(error.kind() == ConversionError::Case::unsupported ||
           error.kind() == ConversionError::Case::missingSound);
  }
  return 0;
}
