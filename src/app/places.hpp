// The folders where a user keeps samples.
#pragma once

#include <QByteArray>
#include <QList>
#include <QUrl>

namespace corvana {

/// Home, music, desktop, downloads and the user's drives, as far as they are there.
QList<QUrl> usersPlaces();

/// The drives among `mounts`, a list of mounted file systems in the form of /proc/self/mounts:
/// what is mounted below /media, /run/media and /mnt. Touches none of them.
QList<QUrl> usersDrives(const QByteArray& mounts);

}  // namespace corvana
