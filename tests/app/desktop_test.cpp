// What the program and the desktop tell each other over the session bus. The desktop's side is
// played by the test.

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QTest>
#include <gtest/gtest.h>

#include "app/desktop_bus.hpp"
#include "app/main_window.hpp"
#include "app/run_announcer.hpp"
#include "app/session_bus.hpp"
#include "support/audio_builder.hpp"
#include "support/temporary_folder.hpp"

namespace corvana::test {
namespace {

constexpr int patience = 20'000;  // ms

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
    EXPECT_EQ(application, QStringLiteral("application://%1.desktop").arg(desktopId));
    progress.emplace_back(news["progress"].toDouble(), news["progress-visible"].toBool());
  }
};

class Desktop : public testing::Test {
 protected:
  void SetUp() override {
    if (!bus.start()) GTEST_SKIP() << "no dbus-daemon here";
    connection = QDBusConnection::connectToBus(bus.address(), "desktop");
    connection.registerVirtualObject("/", &desktop, QDBusConnection::SubPath);
    connection.connect({}, {}, "com.canonical.Unity.LauncherEntry", "Update", &desktop,
                       SLOT(updateTaskBar(QString, QVariantMap)));
  }
  ~Desktop() override {
    for (const char* name : {"desktop", "program"})
      QDBusConnection::disconnectFromBus(name);
    qunsetenv("XDG_ACTIVATION_TOKEN");
  }

  void start(QProcess& program, const QStringList& arguments,
             const QList<std::pair<QString, QString>>& variables = {}) {
    QProcessEnvironment environment = environmentOn(bus, folder);
    for (const auto& [name, value] : variables)
      environment.insert(name, value);
    program.setProcessEnvironment(environment);
    program.start(CORVANA_PROGRAM, arguments);
  }

  /// The window in front goes away, and no other follows it.
  static void lookAway() {
    {
      QWidget front;
      front.show();
      EXPECT_TRUE(QTest::qWaitForWindowActive(&front, patience));
    }
    waitFor([] { return QApplication::activeWindow() == nullptr; });
  }

  void click(const char* token) {
    for (const auto& [member, value] :
         {std::pair("ActivationToken", token), {"ActionInvoked", "default"}}) {
      QDBusMessage signal = QDBusMessage::createSignal("/org/freedesktop/Notifications",
                                                       "org.freedesktop.Notifications", member);
      connection.send(signal << FakeDesktop::notification << value);
    }
  }

  static void waitFor(const std::function<bool()>& condition) {
    EXPECT_TRUE(QTest::qWaitFor(condition, patience));
  }

  TemporaryFolder folder;
  SessionBus bus;
  QDBusConnection connection{"none"};
  FakeDesktop desktop;
};

TEST_F(Desktop, ALaterStartHandsItsTokensOver) {
  connection.registerService(desktopId);
  const QVariantMap both{{"activation-token", "a"}, {"desktop-startup-id", "b"}};
  const QVariantMap none;
  for (const auto& [arguments, member, tokens] :
       {std::tuple(QStringList{}, "Activate", both), std::tuple(QStringList{"/x"}, "Open", both),
        std::tuple(QStringList{}, "Activate", none)}) {
    desktop.calls.clear();
    QProcess later;
    start(later, arguments,
          {{"XDG_ACTIVATION_TOKEN", tokens["activation-token"].toString()},
           {"DESKTOP_STARTUP_ID", tokens["desktop-startup-id"].toString()}});
    waitFor([&] { return later.state() == QProcess::NotRunning; });
    ASSERT_EQ(desktop.calls.size(), 1);
    EXPECT_EQ(desktop.calls[0].member(), member);
    EXPECT_EQ(qdbus_cast<QVariantMap>(desktop.calls[0].arguments().last()), tokens);
  }
}

TEST_F(Desktop, ARequestBringsTheWindowToTheFront) {
  AppDelegate appDelegate;
  auto* adaptor = new DesktopAdaptor(appDelegate);
  MainWindow window(&appDelegate);
  window.showMinimized();
  for (const char* token : {"a", "b"}) {
    lookAway();
    const QVariantMap platformData{{"activation-token", token}};
    token[0] == 'a' ? adaptor->Activate(platformData) : adaptor->Open({}, platformData);
    EXPECT_EQ(qgetenv("XDG_ACTIVATION_TOKEN"), token);
    EXPECT_FALSE(window.isMinimized());
    waitFor([&] { return window.isActiveWindow(); });
  }
}

TEST_F(Desktop, ARunShowsInTheTaskBarAndNotifiesWhereNobodyLooks) {
  connection.registerService("org.freedesktop.Notifications");
  QWidget window;
  window.show();
  RunAnnouncer announcer(QDBusConnection::connectToBus(bus.address(), "program"));
  const auto run = [&](const RunState& end) {
    desktop.progress.clear();
    for (const double progress : {0.0, 0.5, 0.501})
      announcer.update(window, {.isRunning = true, .progress = progress, .failed = 3});
    announcer.update(window, end);
    announcer.update(window, end);
    const std::vector<std::pair<double, bool>> expected = {{0, true}, {0.5, true}, {0, false}};
    waitFor([&] { return desktop.progress.size() >= expected.size(); });
    EXPECT_EQ(desktop.progress, expected);
  };
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window, patience));
  run({.status = "in front"});

  struct {
    RunState end;
    uint replaces;
    QString text;
    const char* token;
  } const cases[] = {
      {{.status = "1", .failed = 1, .withWarnings = 2},
       0,
       "1 file could not be converted.\n2 files have warnings.",
       "a"},
      {{.status = "2"}, FakeDesktop::notification, "", "b"},
  };
  for (const auto& c : cases) {
    lookAway();
    run(c.end);
    waitFor([&] { return !desktop.calls.empty(); });
    ASSERT_EQ(desktop.calls.size(), 1) << "none while the window is in front";
    const QVariantList notification = desktop.calls.takeFirst().arguments();
    EXPECT_EQ(notification[1].toUInt(), c.replaces);
    EXPECT_EQ(notification[3].toString(), c.end.status);
    EXPECT_EQ(notification[4].toString(), c.text);

    click(c.token);
    waitFor([&] { return window.isActiveWindow(); });
    EXPECT_EQ(qgetenv("XDG_ACTIVATION_TOKEN"), c.token);
  }
}

TEST_F(Desktop, TheProgramShowsItsRunsInTheTaskBar) {
  QProcess program;
  start(program, {folder.write("1.wav", wav({fmt({}), data(ByteBuffer(8))})).c_str()});
  waitFor([&] { return desktop.progress.size() >= 2 && !desktop.progress.back().second; });
  EXPECT_EQ(desktop.progress.front(), std::pair(0.0, true));
  program.terminate();
  program.waitForFinished(patience);
}

}  // namespace
}  // namespace corvana::test

#include "desktop_test.moc"
