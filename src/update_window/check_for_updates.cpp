#include "update_window/check_for_updates.hpp"

#include "update_window/vantor_window_controller.hpp"

namespace corvana {

void checkForUpdates(const BundleInfo& info) {
  VantorWindowController& controller = VantorWindowController::sharedController();
  const std::string version = bundleValue(info, bundleVersionKey);
  controller.startUpdateCheck(QStringLiteral("Corvana"), QString::fromStdString(version),
                              QStringLiteral(CORVANA_UPDATE_URL));
}

}  // namespace corvana
