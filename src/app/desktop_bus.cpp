#include "app/desktop_bus.hpp"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QGuiApplication>
#include <QUrl>
#include <QWindow>

#include "app/qt_values.hpp"

namespace corvana {

const char* const desktopId = CORVANA_ID;

namespace {

/// desktopId as an object path.
constexpr const char* objectPath = CORVANA_OBJECT_PATH;
constexpr const char* interfaceName = "org.freedesktop.Application";

/// Keys of platform data.
constexpr const char* activationToken = "activation-token";
constexpr const char* startupId = "desktop-startup-id";

/// Whether the running program has got the request.
bool handOver(const QDBusConnection& bus, const std::vector<std::filesystem::path>& paths,
              const QVariantMap& tokens) {
  QDBusMessage request = QDBusMessage::createMethodCall(desktopId, objectPath, interfaceName,
                                                        paths.empty() ? "Activate" : "Open");
  request.setAutoStartService(false);
  if (!paths.empty()) {
    QStringList uris;
    for (const std::filesystem::path& path : paths)
      uris << urlTextOfPath(path);
    request << uris;
  }
  request << tokens;
  const QDBusMessage reply = bus.call(request);
  if (reply.type() == QDBusMessage::ReplyMessage) return true;
  // No reply: either it is busy for very long, but has the request, or it ended over it.
  return reply.errorName() == QLatin1String("org.freedesktop.DBus.Error.NoReply") &&
         bus.interface()->isServiceRegistered(desktopId);
}

/// On X11 the launcher's busy pointer waits for a window of this start. One that nobody sees does.
void endBusyPointer() {
  QWindow window;
  window.setFlag(Qt::BypassWindowManagerHint);
  window.setGeometry(-1, -1, 1, 1);
  window.show();
  QGuiApplication::sync();
}

QByteArray tokenOf(const QVariantMap& platformData) {
  return platformData.value(activationToken).toString().toUtf8();
}

}  // namespace

DesktopAdaptor::DesktopAdaptor(AppDelegate& appDelegate)
    : QDBusAbstractAdaptor(&appDelegate), appDelegate_(appDelegate) {}

void DesktopAdaptor::Activate(const QVariantMap& platformData) {
  appDelegate_.activate(tokenOf(platformData));
}

void DesktopAdaptor::Open(const QStringList& uris, const QVariantMap& platformData) {
  QList<QUrl> urls;
  for (const QString& uri : uris)
    urls << QUrl(uri);
  appDelegate_.openFiles(pathsOfURLs(urls));
  appDelegate_.activate(tokenOf(platformData));
}

void DesktopAdaptor::ActivateAction(const QString& /*action*/, const QVariantList& /*parameters*/,
                                    const QVariantMap& /*platformData*/) {}

QVariantMap launchTokens() {
  QVariantMap tokens;
  for (const auto& [key, variable] : {std::pair(activationToken, "XDG_ACTIVATION_TOKEN"),
                                      std::pair(startupId, "DESKTOP_STARTUP_ID")})
    if (const QString token = qEnvironmentVariable(variable); !token.isEmpty())
      tokens.insert(QLatin1String(key), token);
  return tokens;
}

DesktopRole joinDesktop(AppDelegate& appDelegate, const std::vector<std::filesystem::path>& paths,
                        const QVariantMap& tokens) {
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return DesktopRole::window;
  new DesktopAdaptor(appDelegate);
  // The object first: whoever sees the name may call at once.
  bus.registerObject(objectPath, &appDelegate);
  // The program that has the name may end between the two steps; then it is ours.
  constexpr int maxAttempts = 3;
  for (int i = 0; i < maxAttempts; ++i) {
    if (bus.registerService(desktopId)) return DesktopRole::window;
    if (!handOver(bus, paths, tokens)) continue;
    if (tokens.contains(startupId) && QGuiApplication::platformName() == QLatin1String("xcb"))
      endBusyPointer();
    return DesktopRole::handedOver;
  }
  return DesktopRole::window;
}

void leaveDesktop() {
  QDBusConnection::sessionBus().unregisterService(desktopId);
}

}  // namespace corvana
