// A session bus of a test's own.
#pragma once

#include <QProcess>
#include <QStandardPaths>

namespace corvana::test {

/// Ends with the object.
class SessionBus {
 public:
  ~SessionBus() {
    daemon_.terminate();
    daemon_.waitForFinished();
  }

  /// Whether there is a program for it, and it runs.
  bool start() {
    const QString program = QStandardPaths::findExecutable("dbus-daemon");
    if (program.isEmpty()) return false;
    daemon_.start(program, {"--session", "--nofork", "--print-address"});
    if (!daemon_.waitForReadyRead()) return false;
    address_ = QString::fromLatin1(daemon_.readLine()).trimmed();
    return true;
  }

  /// Where no bus is, unless it was started.
  const QString& address() const { return address_; }

 private:
  QProcess daemon_;
  QString address_ = "disabled:";
};

}  // namespace corvana::test
