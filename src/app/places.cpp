#include "app/places.hpp"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <algorithm>
#include <string_view>

namespace corvana {
namespace {

/// Blanks and backslashes of a path stand there as three octal digits.
QByteArray unescaped(QByteArray path) {
  for (const auto& [escape, character] :
       {std::pair("\\040", " "), {"\\011", "\t"}, {"\\012", "\n"}, {"\\134", "\\"}})
    path.replace(escape, character);
  return path;
}

}  // namespace

QList<QUrl> usersPlaces() {
  QList<QUrl> places;
  for (const QStandardPaths::StandardLocation location :
       {QStandardPaths::HomeLocation, QStandardPaths::MusicLocation,
        QStandardPaths::DesktopLocation, QStandardPaths::DownloadLocation}) {
    const QString folder = QStandardPaths::writableLocation(location);
    const QUrl place = QUrl::fromLocalFile(QDir::cleanPath(folder));
    // A place that the user has not got is the home folder.
    if (QDir(folder).exists() && !places.contains(place)) places << place;
  }
  QFile mounts(QStringLiteral("/proc/self/mounts"));
  if (mounts.open(QIODevice::ReadOnly)) places << usersDrives(mounts.readAll());
  return places;
}

QList<QUrl> usersDrives(const QByteArray& mounts) {
  QList<QUrl> drives;
  for (const QByteArray& line : mounts.split('\n')) {
    const QList<QByteArray> fields = line.split(' ');  // device, folder, type, …
    // To look at a drive that is mounted on demand would mount it.
    if (fields.size() < 3 || fields[2] == "autofs") continue;
    const QByteArray folder = unescaped(fields[1]);
    const auto isBelow = [&folder](const char* parent) {
      return folder == parent || folder.startsWith(QByteArray(parent) + '/');
    };
    if (!isBelow("/media") && !isBelow("/run/media") && !isBelow("/mnt")) continue;
    const QUrl drive = QUrl::fromLocalFile(QFile::decodeName(folder));
    if (!drives.contains(drive)) drives << drive;
  }
  return drives;
}

}  // namespace corvana
