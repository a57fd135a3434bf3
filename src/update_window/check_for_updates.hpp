// What the menu item "Check for Updates…" does.
#pragma once

#include "platform/bundle_info.hpp"

namespace corvana {

/// Opens the update window and looks for a version newer than the one in `info`. Does nothing
/// when `info` holds no version. Main thread.
void checkForUpdates(const BundleInfo& info);

}  // namespace corvana
