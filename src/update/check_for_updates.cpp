#include "update/check_for_updates.hpp"

#include "update/vantor_window_controller.hpp"

namespace corvana {

void checkForUpdates(const BundleInfo& info) {
  VantorWindowController& controller = VantorWindowController::sharedController();
  const std::string version = bundleValue(info, bundleVersionKey);
  controller.startUpdateCheck(QStringLiteral("Corvana"), QString::fromStdString(version),
                              QStringLiteral(CORVANA_UPDATE_URL));
}

}  // namespace corvana
