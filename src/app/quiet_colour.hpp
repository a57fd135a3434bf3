// The colour of what stays in the background, in every theme.
#pragma once

#include <QColor>
#include <QList>
#include <QPalette>

namespace corvana {

/// Ratio of the luminances of two opaque colours, from 1 (the same) to 21 (black and white).
double contrast(const QColor& one, const QColor& other);

/// What `colour`, which may be translucent, looks like on an opaque `ground`.
QColor blended(const QColor& colour, const QColor& ground);

/// The palette's colour of placeholders, for frames, icons and texts that stand back. Not every
/// theme has made it for its own ground: where its contrast with one of `grounds` is below 3, it is
/// the colour of `text` instead, as weak as that allows.
QColor quietColour(const QPalette& palette, QPalette::ColorRole text, const QList<QColor>& grounds);

}  // namespace corvana
