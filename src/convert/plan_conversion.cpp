#include "convert/plan_conversion.hpp"

#include "convert/detect_format.hpp"
#include "convert/plan_aiff_to_wav.hpp"
#include "convert/plan_wav_to_aiff.hpp"

namespace corvana {

ConversionPlan planConversion(ByteView file) {
  return detectFormat(file) ? planAIFFToWAV(file) : planWAVToAIFF(file);
}

Prospect prospectOf(ByteView file) {
  try {
    return planConversion(file);
  } catch (const ConversionError& error) {
    return error;
  }
}

}  // namespace corvana
