// What the program is.
#pragma once

#include <QWidget>

namespace corvana {

/// Version, licence, home page and the libraries that the program stands on. Modal to the window
/// of `parent`.
void showAbout(QWidget& parent);

}  // namespace corvana
