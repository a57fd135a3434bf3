#include "update_window/web_address.hpp"

#include <QDesktopServices>

namespace corvana {

std::optional<QUrl> webAddress(const QString& text) {
  const QUrl url(text.trimmed(), QUrl::StrictMode);
  const bool isWeb =
      url.scheme() == QLatin1String("https") || url.scheme() == QLatin1String("http");
  if (!url.isValid() || !isWeb || url.host().isEmpty()) return std::nullopt;
  return url;
}

void openURLString(const QString& text) {
  if (const auto url = webAddress(text)) QDesktopServices::openUrl(*url);
}

}  // namespace corvana
