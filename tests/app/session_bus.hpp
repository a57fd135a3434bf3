// A session bus of a test's own.
#pragma once

#include <QProcess>
#include <QStandardPaths>

#include "support/temporary_folder.hpp"

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

/// For a program on that bus, in English, with preferences of its own.
inline QProcessEnvironment environmentOn(const SessionBus& bus, const TemporaryFolder& folder) {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert("DBUS_SESSION_BUS_ADDRESS", bus.address());
  environment.insert("XDG_CONFIG_HOME", (folder / "config").c_str());
  environment.insert("LANGUAGE", "en");
  return environment;
}

}  // namespace corvana::test
