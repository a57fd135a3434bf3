#include "app/qt_values.hpp"

#include <QSysInfo>

#include "vocabulary/screen_text.hpp"

namespace corvana {

QString screenLine(const std::string& text) {
  return QString::fromStdString(readableLine(text));
}

std::filesystem::path pathOfURL(const QUrl& url) {
  if (!url.isLocalFile()) return {};
  const QString host = url.host();
  const bool isHere = host.isEmpty() || host == QLatin1String("localhost") ||
                      host.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) == 0;
  if (!isHere) return {};
  // Not toLocalFile(): it decodes to UTF-16 and loses the bytes of names that are not UTF-8.
  return QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()).toStdString();
}

std::vector<std::filesystem::path> pathsOfURLs(const QList<QUrl>& urls) {
  std::vector<std::filesystem::path> paths;
  for (const QUrl& url : urls)
    if (std::filesystem::path path = pathOfURL(url); !path.empty())
      paths.push_back(std::move(path));
  return paths;
}

QString urlTextOfPath(const std::filesystem::path& path) {
  return QStringLiteral("file://") +
         QString::fromLatin1(QByteArray::fromStdString(path.native()).toPercentEncoding("/"));
}

}  // namespace corvana
