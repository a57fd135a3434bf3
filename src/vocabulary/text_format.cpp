#include "vocabulary/text_format.hpp"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace corvana {
namespace {

/// The digits of a number, and where the point belongs.
struct Digits {
  std::string text;
  int exponent = 0;  ///< of ten, of the first digit
};

/// The digits of `magnitude` in scientific notation with `places` behind the point. What a locale
/// puts in place of the point is passed over.
Digits roundedDigits(double magnitude, int places) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%.*e", places, magnitude);
  Digits digits;
  const char* character = text.data();
  for (; *character != 'e'; ++character)
    if (*character >= '0' && *character <= '9') digits.text += *character;
  digits.exponent = std::atoi(character + 1);
  return digits;
}

/// Without a point, which every locale writes in its own way.
bool readBackAs(const Digits& digits, double magnitude) {
  const int exponent = digits.exponent - static_cast<int>(digits.text.size()) + 1;
  return std::strtod((digits.text + "e" + std::to_string(exponent)).c_str(), nullptr) == magnitude;
}

/// The next number of as many digits.
Digits increased(Digits digits) {
  const std::size_t lastBelowNine = digits.text.find_last_not_of('9');
  if (lastBelowNine == std::string::npos) return {"1", digits.exponent + 1};
  ++digits.text[lastBelowNine];
  digits.text.resize(lastBelowNine + 1);
  return digits;
}

/// The fewest digits that read back as the same double; 17 always do.
Digits shortestDigits(double magnitude) {
  constexpr int maxPlaces = 16;
  for (int places = 0; places < maxPlaces; ++places) {
    Digits nearest = roundedDigits(magnitude, places);
    if (readBackAs(nearest, magnitude)) return nearest;
    // Doubles lie twice as dense below a power of two as above it: there a number that is
    // farther away may read back where the nearest does not.
    if (Digits above = increased(nearest); readBackAs(above, magnitude)) return above;
  }
  return roundedDigits(magnitude, maxPlaces);
}

std::string plainText(const Digits& digits) {
  const auto count = static_cast<int>(digits.text.size());
  if (digits.exponent < 0)
    return "0." + std::string(static_cast<std::size_t>(-digits.exponent - 1), '0') + digits.text;
  const int beforePoint = digits.exponent + 1;
  if (count <= beforePoint)
    return digits.text + std::string(static_cast<std::size_t>(beforePoint - count), '0') + ".0";
  std::string text = digits.text;
  text.insert(static_cast<std::size_t>(beforePoint), 1, '.');
  return text;
}

std::string scientificText(const Digits& digits) {
  std::string text = digits.text;
  if (text.size() > 1) text.insert(1, 1, '.');
  std::array<char, 8> exponent{};
  std::snprintf(exponent.data(), exponent.size(), "e%+03d", digits.exponent);
  return text + exponent.data();
}

}  // namespace

std::string fillText(std::string_view format, std::span<const std::string_view> texts) {
  std::string filled;
  std::size_t next = 0;
  const auto append = [&](std::size_t index) {
    if (index < texts.size()) filled += texts[index];
  };
  while (!format.empty()) {
    if (format.starts_with("%@")) {
      append(next++);
      format.remove_prefix(2);
    } else if (format.size() >= 4 && format[0] == '%' && format[1] >= '1' && format[1] <= '9' &&
               format.substr(2, 2) == "$@") {
      append(static_cast<std::size_t>(format[1] - '1'));
      format.remove_prefix(4);
    } else {
      filled += format.front();
      format.remove_prefix(1);
    }
  }
  return filled;
}

std::string fillText(std::string_view format, std::initializer_list<std::string_view> texts) {
  return fillText(format, std::span(texts.begin(), texts.size()));
}

std::string decimalText(std::int64_t number) {
  return std::to_string(number);
}

std::string decimalText(double number) {
  if (std::isnan(number)) return "nan";
  const std::string sign = std::signbit(number) ? "-" : "";
  if (std::isinf(number)) return sign + "inf";
  const Digits digits = shortestDigits(std::fabs(number));
  const bool plain = digits.exponent >= -4 && digits.exponent < 16;
  return sign + (plain ? plainText(digits) : scientificText(digits));
}

std::string plainText(double number) {
  std::string digits = decimalText(number);
  if (digits.ends_with(".0")) digits.resize(digits.size() - 2);
  return digits;
}

}  // namespace corvana
