#include "inspect/format_text.hpp"

#include "vocabulary/messages.hpp"
#include "vocabulary/screen_text.hpp"
#include "vocabulary/text_format.hpp"

namespace corvana {
namespace {

std::string containerText(const ChunkList& chunks, const Language& language) {
  switch (chunks.container) {
    case Container::wav:
      return "WAV";
    case Container::rifx:
      return language.localised(translatable("RIFX (big-endian WAV)"));
    case Container::rf64:
      return language.localised(translatable("RF64 (WAV above 4 GB)"));
    case Container::riff:
      return fillText(language.localised(translatable("RIFF of the type '%@'")),
                      {readableID(chunks.formType)});
    case Container::aiff:
      return "AIFF";
    case Container::aifc:
      return "AIFF-C";
    case Container::form:
      return fillText(language.localised(translatable("FORM of the type '%@'")),
                      {readableID(chunks.formType)});
    case Container::unknown:
      break;
  }
  return language.localised(translatable("neither WAV nor AIFF"));
}

std::string encodingText(const SoundFormat& format, bool isAIFF, const Language& language) {
  switch (format.kind) {
    case SampleKind::integer:
      return encodingText(SampleEncoding::integer, format.bits, language);
    case SampleKind::floatingPoint:
      return encodingText(SampleEncoding::floatingPoint, format.bits, language);
    case SampleKind::aLaw:
      return encodingText(SampleEncoding::aLaw, format.bits, language);
    case SampleKind::muLaw:
      return encodingText(SampleEncoding::muLaw, format.bits, language);
    case SampleKind::compressed:
      if (!isAIFF)
        return fillText(language.localised(translatable("compressed, format tag %@")),
                        {decimalText(std::int64_t{format.formatTag})});
      return language.localised(translatable("compressed"));
    case SampleKind::unknown:
      break;
  }
  return language.localised(translatable("unknown encoding"));
}

}  // namespace

std::string formatText(const FileDescription& file, const Language& language) {
  std::string line = containerText(file.chunks, language);
  if (const auto& format = file.format) {
    line += ", " + encodingText(*format, file.isAIFF(), language) + ", " +
            channelsText(format->channels, language) + ", " + plainText(format->sampleRate) + " Hz";
    const std::string name = readableLine(format->compressionName);
    if (!format->compressionType.empty())
      line +=
          " ('" + readableID(format->compressionType) + (name.empty() ? "'" : "', " + name) + ")";
  }
  return line;
}

}  // namespace corvana
