#include "update_window/check_for_updates.hpp"

#include <string_view>

#include "update_window/vantor_window_controller.hpp"

namespace corvana {

bool offersUpdateCheck() {
  return !std::string_view(CORVANA_UPDATE_URL).empty();
}

void checkForUpdates(const BundleInfo& info) {
  VantorWindowController& controller = VantorWindowController::sharedController();
  const std::string version = bundleValue(info, bundleVersionKey);
  controller.startUpdateCheck(QStringLiteral("Corvana"), QString::fromStdString(version),
                              QStringLiteral(CORVANA_UPDATE_URL));
}

}  // namespace corvana
