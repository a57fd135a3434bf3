#include "vocabulary/language.hpp"

#include "vocabulary/text_format.hpp"

namespace corvana {

std::string Language::localised(const char* key) const {
  return key;
}

std::string Language::localisedCount(const char* singular, const char* plural,
                                     std::int64_t count) const {
  return insertCount(count == 1 ? singular : plural, decimalText(count));
}

std::string insertCount(std::string text, std::string_view count) {
  constexpr std::string_view place = "%ld";
  if (const std::size_t found = text.find(place); found != std::string::npos)
    text.replace(found, place.size(), count);
  return text;
}

}  // namespace corvana
