// One conversion from bytes to bytes, and its failure.
#pragma once

#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

#include "aiff/aiff_reader.hpp"
#include "convert/carry_out.hpp"
#include "convert/plan_aiff_to_wav.hpp"
#include "convert/plan_wav_to_aiff.hpp"
#include "vocabulary/bytes.hpp"
#include "wav/wav_reader.hpp"

namespace corvana::test {

inline const Language english;

/// The text of the error that `action` ends with.
template <typename Action>
std::string errorOf(const Action& action) {
  try {
    action();
  } catch (const ConversionError& error) {
    return errorDescription(error, english);
  } catch (const std::exception& error) {
    return error.what();
  }
  return "no error";
}

struct Converted {
  ByteBuffer file;
  std::string summary;
  std::string warnings;  ///< a line each
  std::vector<double> progress;
};

/// In the direction that the first byte of `input` tells.
inline Converted convert(const ByteBuffer& input, const ConversionOptions& options = {}) {
  const ConversionPlan plan =
      input.at(0) == 'F' ? planAIFFToWAV(input, options) : planWAVToAIFF(input, options);
  MemorySink output;
  std::vector<double> progress;
  carryOut(plan, MemorySource(input), output,
           [&](double fraction) { progress.push_back(fraction); });
  EXPECT_EQ(output.bytes.size(), plan.outputSize());
  std::string warnings;
  for (const Warning& warning : plan.warnings)
    warnings += warningText(warning, english) + "\n";
  return {output.bytes, makeSummary(plan.summary, english), warnings, progress};
}

/// All values in one line, to compare records at a glance.
template <typename... Values>
std::string line(const Values&... values) {
  std::ostringstream text;
  (text << ... << values);
  return text.str();
}

/// What a reader finds beside the format.
inline std::string found(const WavInfo& info) {
  std::string text = line(info.dataSize, "@", info.dataOffset);
  if (info.loops) text += line(" smpl ", info.midiUnityNote, "+", info.midiPitchFraction);
  for (const SampleLoop loop : info.loops.value_or(SampleLoopView()))
    text += line(" loop ", loop.cueID, "/", loop.type, " ", loop.start, "-", loop.end, " x",
                 loop.playCount);
  for (const CuePoint point : info.cuePoints)
    text += line(" cue ", point.id, "@", point.position);
  if (const auto& i = info.instrument)
    text += line(" inst ", +i->unshiftedNote, " ", +i->fineTune, " ", +i->gain, " ", +i->lowNote,
                 "-", +i->highNote, " ", +i->lowVelocity, "-", +i->highVelocity);
  return text;
}

inline std::string found(const AiffInfo& info) {
  std::string text;
  for (const AiffMarker& marker : info.markers)
    text += line(marker.id, " ", marker.name, " @", marker.position, ", ");
  if (const auto& i = info.instrument) {
    for (const AiffLoop& loop : {i->sustainLoop, i->releaseLoop})
      text += line("(", loop.playMode, " ", loop.beginMarker, " ", loop.endMarker, ")");
    text += line(" ", +i->baseNote, " ", +i->detune, " ", +i->lowNote, "-", +i->highNote, " ",
                 +i->lowVelocity, "-", +i->highVelocity, " ", i->gain);
  }
  return text;
}

}  // namespace corvana::test
