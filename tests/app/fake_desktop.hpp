// The desktop's side of the session bus, played by a test.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace corvana::test {

/// Takes every call that it is given, and the news of task bars.
class FakeDesktop : public QDBusVirtualObject {
  Q_OBJECT
 public:
  static constexpr uint notification = 7;  ///< every one is it

  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
    calls << message;
    return bus.send(message.createReply(notification));
  }

  QList<QDBusMessage> calls;
  std::vector<std::pair<double, bool>> progress;

 public slots:
  void updateTaskBar(const QString& application, const QVariantMap& news) {
    EXPECT_EQ(application, "application://example.corvana.Corvana.desktop");
    progress.emplace_back(news["progress"].toDouble(), news["progress-visible"].toBool());
  }
};

}  // namespace corvana::test
