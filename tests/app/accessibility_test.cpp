// What a screen reader gets to know: the program on an X server of the test's own, asked over the
// accessibility bus.

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QTest>
#include <gtest/gtest.h>

#include "app/session_bus.hpp"
#include "support/audio_builder.hpp"
#include "support/temporary_folder.hpp"

namespace corvana::test {
namespace {

constexpr int patience = 20'000;  // ms

const QString accessible = "org.a11y.atspi.Accessible";
const QString registry = "org.a11y.atspi.Registry";
const QString root = "/org/a11y/atspi/accessible/root";

class ScreenReader : public QObject {
  Q_OBJECT
 public:
  explicit ScreenReader(const QString& address)
      : bus_(QDBusConnection::connectToBus(address, "accessibility")) {
    ask(registry, "/org/a11y/atspi/registry", registry, "RegisterEvent", {"object:"});
    bus_.connect({}, {}, "org.a11y.atspi.Event.Object", "StateChanged", this,
                 SLOT(hear(QDBusMessage)));
  }
  ~ScreenReader() override { QDBusConnection::disconnectFromBus("accessibility"); }

  /// All views of all programs: "role: name (description) value or text".
  QStringList views() { return views(registry, root); }
  /// Those that came into sight.
  QStringList heard;

 private slots:
  void hear(const QDBusMessage& event) {
    if (event.arguments().value(0) == "showing" && event.arguments().value(1) == 1)
      heard += view(event.service(), event.path());
  }

 private:
  QVariant ask(const QString& service, const QString& path, const QString& interface,
               const QString& member, const QVariantList& arguments = {}) {
    auto question = QDBusMessage::createMethodCall(service, path, interface, member);
    question.setArguments(arguments);
    const QDBusMessage reply = bus_.call(question);
    if (reply.type() != QDBusMessage::ReplyMessage) return {};
    const QVariant answer = reply.arguments().value(0);
    return answer.canConvert<QDBusVariant>() ? answer.value<QDBusVariant>().variant() : answer;
  }
  QString view(const QString& service, const QString& path) {
    const auto property = [&](const QString& interface, const char* name) {
      return ask(service, path, "org.freedesktop.DBus.Properties", "Get", {interface, name})
          .toString();
    };
    return ask(service, path, accessible, "GetRoleName").toString() + ": " +
           property(accessible, "Name") + " (" + property(accessible, "Description") + ") " +
           property("org.a11y.atspi.Value", "CurrentValue") +
           ask(service, path, "org.a11y.atspi.Text", "GetText", {0, -1}).toString();
  }
  QStringList views(const QString& service, const QString& path) {
    QStringList all(view(service, path));
    const auto children = ask(service, path, accessible, "GetChildren").value<QDBusArgument>();
    for (children.beginArray(); !children.atEnd();) {
      QString childsService;
      QDBusObjectPath child;
      children.beginStructure();
      children >> childsService >> child;
      children.endStructure();
      all += views(childsService, child.path());
    }
    children.endArray();
    return all;
  }

  QDBusConnection bus_;
};

TEST(Accessibility, AScreenReaderKnowsTheRunAndHearsOfItsEnd) {
  SessionBus bus;
  QProcess screen;
  screen.start("Xvfb", {"-displayfd", "1", "-nolisten", "tcp"});
  if (!bus.start() || !screen.waitForReadyRead(patience)) GTEST_SKIP() << "no bus or no Xvfb here";
  const QString display = ':' + screen.readLine().trimmed();
  const QDBusMessage address =
      QDBusConnection::connectToBus(bus.address(), "session")
          .call(QDBusMessage::createMethodCall("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus",
                                               "GetAddress"));
  QDBusConnection::disconnectFromBus("session");
  if (address.type() != QDBusMessage::ReplyMessage) GTEST_SKIP() << "no at-spi2-core here";
  ScreenReader reader(address.arguments()[0].toString());

  const TemporaryFolder folder;
  folder.write("in/a.wav", wav({fmt({}), data(ByteBuffer(8))}));
  folder.write("in/b.wav", "something else");
  QProcessEnvironment environment = environmentOn(bus, folder);
  environment.insert("DISPLAY", display);
  environment.insert("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
  environment.insert("QT_QPA_PLATFORM", "xcb");
  QProcess program;
  QProcess later;
  for (QProcess* process : {&program, &later})
    process->setProcessEnvironment(environment);
  program.start(CORVANA_PROGRAM);
  const auto isThere = [&] { return reader.views().contains("notification: Ready. () "); };
  ASSERT_TRUE(QTest::qWaitFor(isThere, patience));
  later.start(CORVANA_PROGRAM, {(folder / "in").c_str()});
  EXPECT_TRUE(later.waitForFinished(patience));
  const QString end = "notification: Done – 2 files processed. (1 converted · 1 failed) ";
  EXPECT_TRUE(QTest::qWaitFor([&] { return reader.heard.contains(end); }, patience));
  const QStringList views = reader.views();
  for (const QString& view :
       {end, QString("progress bar: Progress () 1e+05"),
        QString("text: Log () a.wav => a.aif  [16-bit, mono, 44100 Hz]\n"
                "✗ b.wav: Unsupported format: neither WAV nor AIFF\n"),
        QString("push button: 1 converted · 1 failed (Shows the next file that failed or has "
                "warnings.) "),
        QString("panel: Drop area for files and folders (Files and folders that are dropped here "
                "are converted.) ")})
    EXPECT_TRUE(views.contains(view)) << views.join('\n').toStdString();
  for (QProcess* process : {&program, &screen}) {
    process->terminate();
    process->waitForFinished(patience);
  }
}

}  // namespace
}  // namespace corvana::test

#include "accessibility_test.moc"
