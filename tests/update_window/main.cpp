// The real window and the real network code, without a screen and without a proxy.

#include <QApplication>
#include <QNetworkProxy>
#include <gtest/gtest.h>

#include "support/temporary_folder.hpp"

int main(int argumentCount, char** argumentValues) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const corvana::test::TemporaryFolder folder;
  qputenv("XDG_RUNTIME_DIR", folder.path().c_str());
  QApplication application(argumentCount, argumentValues);
  QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
  testing::InitGoogleTest(&argumentCount, argumentValues);
  return RUN_ALL_TESTS();
}
