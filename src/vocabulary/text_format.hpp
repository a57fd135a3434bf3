// Numbers as texts, and texts with places for other texts.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

namespace corvana {

/// A message: its name for programs, and its text for people, in English and with places for its
/// values.
struct MessageForm {
  const char* code;
  const char* text;
};

/// Puts texts in place of "%@" (one after another) and "%1$@", "%2$@" … (by number). A place
/// without a text becomes empty. Texts are inserted unchanged.
std::string fillText(std::string_view format, std::span<const std::string_view> texts);
std::string fillText(std::string_view format, std::initializer_list<std::string_view> texts);

/// The number in plain decimal digits, without grouping, "-" in front when negative.
std::string decimalText(std::int64_t number);

/// The shortest decimal form that reads back as the same double, with at least one decimal
/// place ("44100.5", "4000000000.0"); "inf" and "nan" for values that are not finite; an
/// exponent from 1e+16 upwards and below 0.0001.
std::string decimalText(double number);

/// The same, but a whole number without its decimal place.
std::string plainText(double number);

}  // namespace corvana
