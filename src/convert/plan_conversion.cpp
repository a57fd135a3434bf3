#include "convert/plan_conversion.hpp"

#include "convert/detect_format.hpp"
#include "convert/plan_aiff_to_wav.hpp"
#include "convert/plan_wav_to_aiff.hpp"

namespace corvana {

ConversionPlan planConversion(ByteView file, const ConversionOptions& options) {
  return detectFormat(file, options.anyEncoding) ? planAIFFToWAV(file, options)
                                                 : planWAVToAIFF(file, options);
}

Prospect prospectOf(ByteView file, const ConversionOptions& options) {
  try {
    return planConversion(file, options);
  } catch (const ConversionError& error) {
    return error;
  }
}

}  // namespace corvana
