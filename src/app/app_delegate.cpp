#include "app/app_delegate.hpp"

#include "app/bring_to_front.hpp"
#include "app/view_controller.hpp"

namespace corvana {

void AppDelegate::openFiles(const std::vector<std::filesystem::path>& paths) {
  if (mainViewController) {
    mainViewController->processURLs(paths);
  } else {
    pendingURLs.insert(pendingURLs.end(), paths.begin(), paths.end());
  }
}

void AppDelegate::activate(const QByteArray& activationToken) {
  if (mainViewController) bringToFront(*mainViewController->window(), activationToken);
}

}  // namespace corvana
