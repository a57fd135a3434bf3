#include "app/bring_to_front.hpp"

#include <QApplication>
#include <QTimer>
#include <QWindow>
#include <chrono>

namespace corvana {
namespace {

/// After this time a request that was not granted is one that was refused.
constexpr std::chrono::seconds refusalTime{1};

bool isX11() {
  return QGuiApplication::platformName() == QLatin1String("xcb");
}

/// X11 raises a window only for an action of the user that is younger than the last one elsewhere,
/// and the toolkit dates its request with the newest event that it has seen. A property that is
/// set anew makes an event of this moment.
void seeAnEventOfNow(const QWidget& window) {
  QWindow* handle = window.windowHandle();
  if (handle == nullptr) return;
  handle->setIcon(handle->icon());
  QGuiApplication::sync();
}

}  // namespace

void bringToFront(QWidget& window, const QByteArray& activationToken) {
  window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
  window.raise();
  if (isX11()) {
    seeAnEventOfNow(window);
  } else if (!activationToken.isEmpty()) {
    qputenv("XDG_ACTIVATION_TOKEN", activationToken);  // the toolkit takes it from there
  }
  window.activateWindow();
  QTimer::singleShot(refusalTime, &window, [&window] { QApplication::alert(&window); });
}

}  // namespace corvana
