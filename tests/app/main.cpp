// The real window without a screen, a session bus or a network, with preferences of its own.

#include <QNetworkProxy>
#include <QSettings>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "app/application.hpp"

int main(int argumentCount, char** argumentValues) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
  const QTemporaryDir folder;
  qputenv("XDG_RUNTIME_DIR", folder.path().toUtf8());
  corvana::Application application(argumentCount, argumentValues);
  // Names are left to the proxy, which is not there.
  QNetworkProxy::setApplicationProxy({QNetworkProxy::HttpProxy, "127.0.0.1", 1});
  QCoreApplication::setOrganizationName("Corvana");
  QCoreApplication::setApplicationName("Corvana");
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder.path());
  testing::InitGoogleTest(&argumentCount, argumentValues);
  return RUN_ALL_TESTS();
}
