#include "app/app_delegate.hpp"

#include <QCoreApplication>
#include <QFileOpenEvent>

#include "app/qt_values.hpp"
#include "app/view_controller.hpp"

namespace corvana {

AppDelegate::AppDelegate() {
  QCoreApplication::instance()->installEventFilter(this);
}

void AppDelegate::openFiles(const std::vector<std::filesystem::path>& paths) {
  if (mainViewController) {
    mainViewController->processURLs(paths);
  } else {
    pendingURLs.insert(pendingURLs.end(), paths.begin(), paths.end());
  }
}

void AppDelegate::activate() {
  if (!mainViewController) return;
  QWidget* window = mainViewController->window();
  window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
  window->raise();
  window->activateWindow();
}

bool AppDelegate::eventFilter(QObject* object, QEvent* event) {
  if (event->type() != QEvent::FileOpen) return QObject::eventFilter(object, event);
  openFiles(pathsOfURLs({static_cast<QFileOpenEvent*>(event)->url()}));
  return true;
}

}  // namespace corvana
