#include "app/quiet_colour.hpp"

#include <algorithm>
#include <cmath>

namespace corvana {
namespace {

constexpr double leastContrast = 3;

/// 0 (black) to 1 (white), as bright as the eye takes it.
double luminance(const QColor& colour) {
  const auto linear = [](double part) {
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
         0.0722 * linear(colour.blueF());
}

}  // namespace

double contrast(const QColor& one, const QColor& other) {
  const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
  constexpr double glare = 0.05;  // of any screen
  return (light + glare) / (dark + glare);
}

QColor blended(const QColor& colour, const QColor& ground) {
  const float share = colour.alphaF();
  const auto mix = [share](float above, float below) {
    return above * share + below * (1 - share);
  };
  return QColor::fromRgbF(mix(colour.redF(), ground.redF()), mix(colour.greenF(), ground.greenF()),
                          mix(colour.blueF(), ground.blueF()));
}

QColor quietColour(const QPalette& palette, QPalette::ColorRole text,
                   const QList<QColor>& grounds) {
  const auto isSeen = [&grounds](const QColor& colour) {
    return std::all_of(grounds.begin(), grounds.end(), [&colour](const QColor& ground) {
      return contrast(blended(colour, ground), ground) >= leastContrast;
    });
  };
  QColor colour = palette.color(QPalette::PlaceholderText);
  if (isSeen(colour)) return colour;
  colour = palette.color(text);
  for (const float share : {0.5F, 0.6F, 0.7F, 0.8F, 0.9F, 1.0F}) {
    colour.setAlphaF(share);
    if (isSeen(colour)) break;
  }
  return colour;
}

}  // namespace corvana
