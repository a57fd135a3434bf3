#include "app/file_manager.hpp"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QInputEvent>
#include <QUrl>
#include <algorithm>

#include "app/qt_values.hpp"

namespace corvana {
namespace {

/// The display's clock, in milliseconds.
quint64 lastInputTime = 0;

/// Where windows are brought to the front by the time of the user's act (X11), the time as a
/// startup notification has it; elsewhere empty.
QString startupId() {
  if (QGuiApplication::platformName() != QLatin1String("xcb") || lastInputTime == 0) return {};
  static int count = 0;
  return QStringLiteral("corvana-%1-%2_TIME%3")
      .arg(QCoreApplication::applicationPid())
      .arg(++count)
      .arg(lastInputTime);
}

}  // namespace

void showInFileManager(const std::vector<std::filesystem::path>& files) {
  QStringList uris;
  for (const std::filesystem::path& file : files)
    uris << urlTextOfPath(file);
  QDBusMessage request = QDBusMessage::createMethodCall(
      QStringLiteral("org.freedesktop.FileManager1"),
      QStringLiteral("/org/freedesktop/FileManager1"),
      QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
  request << uris << startupId();
  const QDBusPendingCall call = QDBusConnection::sessionBus().asyncCall(request);
  const QUrl folder(urlTextOfPath(files.front().parent_path()));
  if (call.isError()) {  // there is no bus
    QDesktopServices::openUrl(folder);
    return;
  }
  auto* watcher = new QDBusPendingCallWatcher(call, qApp);
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, qApp, [watcher, folder] {
    if (watcher->isError()) QDesktopServices::openUrl(folder);
    watcher->deleteLater();
  });
}

LastInput::LastInput(QObject* application) : QObject(application) {
  application->installEventFilter(this);
}

bool LastInput::eventFilter(QObject* /*watched*/, QEvent* event) {
  switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
      // Events that the program makes itself have no time.
      lastInputTime =
          std::max<quint64>(lastInputTime, static_cast<QInputEvent*>(event)->timestamp());
      break;
    default:
      break;
  }
  return false;
}

}  // namespace corvana
