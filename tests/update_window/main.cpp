// The real window and the real network code, without a screen and without a proxy.

#include <QApplication>
#include <QNetworkProxy>
#include <QTemporaryDir>
#include <gtest/gtest.h>

int main(int argumentCount, char** argumentValues) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QTemporaryDir folder;
  qputenv("XDG_RUNTIME_DIR", folder.path().toUtf8());
  QApplication application(argumentCount, argumentValues);
  QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
  testing::InitGoogleTest(&argumentCount, argumentValues);
  return RUN_ALL_TESTS();
}
