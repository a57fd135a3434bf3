// Converts a WAV file into an AIFF file, or an AIFF file into a WAV file, in memory:
//   convert INPUT OUTPUT
#include <corvana/convert/carry_out.hpp>
#include <corvana/convert/plan_conversion.hpp>
#include <corvana/vocabulary/messages.hpp>
#include <fstream>
#include <iostream>
#include <iterator>

int main(int count, char** arguments) {
  if (count != 3) {
    std::cerr << "Usage: convert INPUT OUTPUT\n";
    return 2;
  }
  std::ifstream inputFile(arguments[1], std::ios::binary);
  const corvana::ByteBuffer input(std::istreambuf_iterator<char>(inputFile), {});
  const corvana::Language english;
  try {
    // The plan knows everything about the output but its samples.
    const corvana::ConversionPlan plan = corvana::planConversion(input);
    std::cout << corvana::makeSummary(plan.summary, english) << '\n';
    for (const corvana::Warning& warning : plan.warnings)
      std::cout << corvana::warningText(warning, english) << '\n';

    const corvana::ByteBuffer output = corvana::carryOutInMemory(plan, input);
    std::ofstream outputFile(arguments[2], std::ios::binary);
    outputFile.write(reinterpret_cast<const char*>(output.data()), std::ssize(output));
    outputFile.close();
    if (outputFile) return 0;
    std::cerr << "Cannot write " << arguments[2] << '\n';
  } catch (const corvana::ConversionError& error) {
    std::cerr << arguments[1] << ": " << corvana::errorDescription(error, english) << '\n';
  }
  return 1;
}
