#include "app/preferences.hpp"

#include <QFile>
#include <QSaveFile>
#include <QSettings>
#include <filesystem>
#include <system_error>

#include "app/qt_values.hpp"
#include "platform/texts.hpp"
#include "vocabulary/text_format.hpp"

namespace corvana {
namespace {

/// The toolkit keeps it to itself, so the same is tried again.
QString reasonNotToStore(const QString& file) {
  const std::filesystem::path path(QFile::encodeName(file).toStdString());
  std::error_code error;
  std::filesystem::create_directories(path.parent_path(), error);
  if (error) return qtText(error.message());
  QSaveFile attempt(file);
  attempt.setDirectWriteFallback(false);
  if (attempt.open(QIODevice::WriteOnly)) {
    attempt.write(QByteArray(4096, '\n'));
    attempt.flush();
  }
  return attempt.errorString();  // nothing is committed
}

}  // namespace

bool preference(const char* key) {
  return QSettings().value(QLatin1String(key), false).toBool();
}

QString storePreference(const char* key, bool value) {
  QSettings settings;
  settings.setValue(QLatin1String(key), value);
  settings.sync();
  if (settings.status() == QSettings::NoError) return {};
  const QString file = settings.fileName();
  return qtText(fillText(
      localised("The options cannot be stored in “%1$@”: %2$@"),
      {screenLine(file.toStdString()).toStdString(), reasonNotToStore(file).toStdString()}));
}

}  // namespace corvana
