#include "app/app_delegate.hpp"

#include <QWidget>

#include "app/view_controller.hpp"

namespace corvana {

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

}  // namespace corvana
