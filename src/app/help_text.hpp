// What the help says, as HTML in the user's language.
#pragma once

#include <QColor>
#include <QMenuBar>
#include <QString>

namespace corvana {

/// What is kept and lost in both directions, where outputs go, and the keys of the menus' commands.
/// `line` is the colour between the rows of its tables; all others are the palette's.
QString helpText(const QMenuBar& menus, const QColor& line);

}  // namespace corvana
