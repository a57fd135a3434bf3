#include "app/run_announcer.hpp"

#include <QApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QVariantMap>

#include "app/bring_to_front.hpp"
#include "app/desktop_bus.hpp"
#include "app/qt_values.hpp"
#include "platform/texts.hpp"

namespace corvana {
namespace {

const QString notifications = QStringLiteral("org.freedesktop.Notifications");
const QString notificationsPath = QStringLiteral("/org/freedesktop/Notifications");

constexpr int serversChoice = -1;  // of the time that a notification is seen

/// What went wrong, in a line for each kind. Empty where nothing did.
QString troubles(const RunState& begin, const RunState& end) {
  QStringList lines;
  if (const auto failed = end.failed - begin.failed; failed > 0)
    lines << qtText(localisedCount("%ld file could not be converted.",
                                   "%ld files could not be converted.", failed));
  if (const auto warned = end.withWarnings - begin.withWarnings; warned > 0)
    lines << qtText(localisedCount("%ld file has warnings.", "%ld files have warnings.", warned));
  return lines.join(QLatin1Char('\n'));
}

}  // namespace

RunAnnouncer::RunAnnouncer(const QDBusConnection& bus) : bus_(bus) {
  bus_.connect(notifications, notificationsPath, notifications, QStringLiteral("ActivationToken"),
               this, SLOT(activationTokenGiven(uint, QString)));
  bus_.connect(notifications, notificationsPath, notifications, QStringLiteral("ActionInvoked"),
               this, SLOT(notificationClicked(uint)));
}

RunAnnouncer::~RunAnnouncer() {
  if (begin_.isRunning) showProgress(0, false);
}

void RunAnnouncer::update(QWidget& window, const RunState& state) {
  window_ = &window;
  if (state.isRunning) {
    const int percent = static_cast<int>(state.progress * 100);
    const bool isNew = !begin_.isRunning;
    if (isNew) begin_ = state;
    if (isNew || percent != shownPercent_) showProgress(state.progress, true);
    shownPercent_ = percent;
  } else if (begin_.isRunning) {
    begin_.isRunning = false;
    showProgress(0, false);
    const bool isLookedAt = QApplication::activeWindow() != nullptr || !window.isVisible();
    if (isLookedAt) return;
    QApplication::alert(&window);
    notify(state);
  }
}

/// Task bars of several desktops listen to this.
void RunAnnouncer::showProgress(double progress, bool visible) {
  QDBusMessage update = QDBusMessage::createSignal(
      QStringLiteral("/com/canonical/unity/launcherentry/1"),
      QStringLiteral("com.canonical.Unity.LauncherEntry"), QStringLiteral("Update"));
  update << QStringLiteral("application://%1.desktop").arg(QLatin1String(desktopId))
         << QVariantMap{{QStringLiteral("progress"), progress},
                        {QStringLiteral("progress-visible"), visible}};
  bus_.send(update);
}

void RunAnnouncer::notify(const RunState& end) {
  QDBusMessage notification = QDBusMessage::createMethodCall(
      notifications, notificationsPath, notifications, QStringLiteral("Notify"));
  notification << QCoreApplication::applicationName() << notification_ << QLatin1String(desktopId)
               << end.status << troubles(begin_, end)
               << QStringList{QStringLiteral("default"), qtText(localised("Show"))}
               << QVariantMap{{QStringLiteral("desktop-entry"), QLatin1String(desktopId)},
                              {QStringLiteral("category"), QStringLiteral("transfer.complete")}}
               << serversChoice;
  auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(notification), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
    watcher->deleteLater();
    if (const QDBusPendingReply<uint> reply = *watcher; reply.isValid())
      notification_ = reply.value();
  });
}

void RunAnnouncer::activationTokenGiven(uint notification, const QString& token) {
  if (notification == notification_) activationToken_ = token.toUtf8();
}

void RunAnnouncer::notificationClicked(uint notification) {
  if (notification != notification_ || notification == 0 || !window_) return;
  bringToFront(*window_, activationToken_);
  activationToken_.clear();
}

}  // namespace corvana
