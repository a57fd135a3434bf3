#include "app/desktop_bus.hpp"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QUrl>

#include "app/qt_values.hpp"

namespace corvana {
namespace {

/// desktopId as an object path.
constexpr const char* objectPath = "/example/corvana/Corvana";
constexpr const char* interfaceName = "org.freedesktop.Application";

/// Whether the running program has got the request.
bool handOver(const QDBusConnection& bus, const std::vector<std::filesystem::path>& paths) {
  QDBusMessage request = QDBusMessage::createMethodCall(desktopId, objectPath, interfaceName,
                                                        paths.empty() ? "Activate" : "Open");
  request.setAutoStartService(false);
  if (!paths.empty()) {
    QStringList uris;
    for (const std::filesystem::path& path : paths)
      uris << urlTextOfPath(path);
    request << uris;
  }
  request << QVariantMap();
  const QDBusMessage reply = bus.call(request);
  if (reply.type() == QDBusMessage::ReplyMessage) return true;
  // No reply: either it is busy for very long, but has the request, or it ended over it.
  return reply.errorName() == QLatin1String("org.freedesktop.DBus.Error.NoReply") &&
         bus.interface()->isServiceRegistered(desktopId);
}

}  // namespace

DesktopAdaptor::DesktopAdaptor(AppDelegate& appDelegate)
    : QDBusAbstractAdaptor(&appDelegate), appDelegate_(appDelegate) {}

void DesktopAdaptor::Activate(const QVariantMap& /*platformData*/) {
  appDelegate_.activate();
}

void DesktopAdaptor::Open(const QStringList& uris, const QVariantMap& /*platformData*/) {
  QList<QUrl> urls;
  for (const QString& uri : uris)
    urls << QUrl(uri);
  appDelegate_.activate();
  appDelegate_.openFiles(pathsOfURLs(urls));
}

void DesktopAdaptor::ActivateAction(const QString& /*action*/, const QVariantList& /*parameters*/,
                                    const QVariantMap& /*platformData*/) {}

DesktopRole joinDesktop(AppDelegate& appDelegate, const std::vector<std::filesystem::path>& paths) {
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return DesktopRole::window;
  new DesktopAdaptor(appDelegate);
  // The object first: whoever sees the name may call at once.
  bus.registerObject(objectPath, &appDelegate);
  // The program that has the name may end between the two steps; then it is ours.
  constexpr int maxAttempts = 3;
  for (int i = 0; i < maxAttempts; ++i) {
    if (bus.registerService(desktopId)) return DesktopRole::window;
    if (handOver(bus, paths)) return DesktopRole::handedOver;
  }
  return DesktopRole::window;
}

void leaveDesktop() {
  QDBusConnection::sessionBus().unregisterService(desktopId);
}

}  // namespace corvana
