// What the menu item "Check for Updates…" does.
#pragma once

#include "platform/bundle_info.hpp"

namespace corvana {

/// Whether this build has an address to ask. Without one there is no such menu item.
bool offersUpdateCheck();

/// Opens the update window and looks for a version newer than the one in `info`. Does nothing
/// when `info` holds no version. Main thread.
void checkForUpdates(const BundleInfo& info);

}  // namespace corvana
