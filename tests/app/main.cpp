// The real window without a screen, without a session bus, with preferences of its own.

#include <QSettings>
#include <gtest/gtest.h>

#include "app/application.hpp"
#include "support/temporary_folder.hpp"

int main(int argumentCount, char** argumentValues) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
  corvana::Application application(argumentCount, argumentValues);
  QCoreApplication::setOrganizationName("Corvana");
  QCoreApplication::setApplicationName("Corvana");
  const corvana::test::TemporaryFolder preferences;
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                     QString::fromStdString(preferences.path().native()));
  testing::InitGoogleTest(&argumentCount, argumentValues);
  return RUN_ALL_TESTS();
}
