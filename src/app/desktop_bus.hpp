// The program on the session bus: there is one per session, and later starts hand their files
// to it.
#pragma once

#include <QDBusAbstractAdaptor>
#include <QStringList>
#include <QVariantMap>
#include <filesystem>
#include <vector>

#include "app/app_delegate.hpp"

namespace corvana {

/// Bus name of the program, and the name of its desktop entry and icon: the build's CORVANA_ID.
extern const char* const desktopId;

/// What the desktop asks of the running program: the interface org.freedesktop.Application.
class DesktopAdaptor : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")
 public:
  explicit DesktopAdaptor(AppDelegate& appDelegate);

 public slots:
  void Activate(const QVariantMap& platformData);
  /// Takes file URLs of this machine; others are left out.
  void Open(const QStringList& uris, const QVariantMap& platformData);
  /// There are no such actions.
  void ActivateAction(const QString& action, const QVariantList& parameters,
                      const QVariantMap& platformData);

 private:
  AppDelegate& appDelegate_;
};

/// Whether this start of the program is the one with the window.
enum class DesktopRole { window, handedOver };

/// What the desktop gave this start so that its window may come to the front, as platform data.
/// To be asked for before there is an application object, which takes a part of it away.
QVariantMap launchTokens();

/// Makes this program the one of its session, or hands `paths` (absolute; without any: a
/// request to come to the front) and the launch tokens to the one that already is. Without a
/// session bus every start has a window.
DesktopRole joinDesktop(AppDelegate& appDelegate, const std::vector<std::filesystem::path>& paths,
                        const QVariantMap& tokens);

/// Later starts are on their own from now on.
void leaveDesktop();

}  // namespace corvana
