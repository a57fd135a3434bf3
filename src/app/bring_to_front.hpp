// Brings a window to the front on request of the user, also where the desktop keeps programs from
// stealing the focus.
#pragma once

#include <QByteArray>
#include <QWidget>

namespace corvana {

/// Shows `window` in front of all others. `activationToken` is what the desktop gave for this
/// request, the proof that a Wayland desktop asks for; empty where it gave none. A desktop that
/// refuses marks the window as one that wants attention.
void bringToFront(QWidget& window, const QByteArray& activationToken);

}  // namespace corvana
