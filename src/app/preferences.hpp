// The options that the user's preferences keep from one start to the next.
#pragma once

#include <QString>

namespace corvana {

/// False where the preferences do not have it.
bool preference(const char* key);

/// At once, so that another start sees it. What there is to say where that is not possible: the
/// file, and the system's reason; else empty.
QString storePreference(const char* key, bool value);

}  // namespace corvana
