// The program itself, started once and again, on a session bus of its own and without one.

#include <QDir>
#include <QProcess>
#include <QTest>
#include <gtest/gtest.h>

#include "app/qt_values.hpp"
#include "app/session_bus.hpp"
#include "support/audio_builder.hpp"
#include "support/temporary_folder.hpp"

namespace corvana::test {
namespace {

constexpr int patience = 20'000;  // ms

class Start : public testing::Test {
 protected:
  void start(QProcess& program, const QStringList& arguments,
             const QString& executable = CORVANA_PROGRAM) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DBUS_SESSION_BUS_ADDRESS", bus.address());
    environment.insert("XDG_CONFIG_HOME", (folder / "config").c_str());
    environment.insert("LANGUAGE", "en");
    program.setProcessEnvironment(environment);
    program.setWorkingDirectory(folder.path().c_str());
    program.start(executable, arguments);
    ASSERT_TRUE(program.waitForStarted(patience));
  }

  static void end(QProcess& program) {
    program.terminate();
    program.waitForFinished(patience);
  }

  void writeWavs(std::initializer_list<const char*> names) {
    for (const char* name : names)
      folder.write(name, wav({fmt({}), data(ByteBuffer(8))}));
  }

  void waitForFile(const fs::path& name) {
    EXPECT_TRUE(QTest::qWaitFor([&] { return fs::exists(folder / name); }, patience)) << name;
  }

  TemporaryFolder folder;
  SessionBus bus;
};

TEST_F(Start, LaterStartsHandTheirFilesToTheFirst) {
  if (!bus.start()) GTEST_SKIP() << "no dbus-daemon here";
  writeWavs({"1.wav", "2.wav", "Flöte #3 100%.wav", "4.wav"});
  QProcess first;
  start(first, {"1.wav"});
  waitForFile("1.aif");

  for (const auto& [arguments, output] :
       {std::pair(QStringList{"--", "2.wav"}, "2.aif"),
        std::pair(QStringList{urlTextOfPath(folder / "Flöte #3 100%.wav")}, "Flöte #3 100%.aif"),
        std::pair(QStringList{}, "1.aif")}) {
    QProcess later;
    start(later, arguments);
    EXPECT_TRUE(later.waitForFinished(patience));
    EXPECT_EQ(later.exitCode(), 0);
    waitForFile(output);
  }
  EXPECT_EQ(first.state(), QProcess::Running);
  end(first);

  // The name is free again.
  QProcess next;
  start(next, {"4.wav"});
  waitForFile("4.aif");
  EXPECT_EQ(next.state(), QProcess::Running);
  end(next);
}

TEST_F(Start, EveryStartHasAWindowWithoutASessionBus) {
  writeWavs({"1.wav", "2.wav"});
  QProcess first;
  QProcess second;
  start(first, {"1.wav"});
  waitForFile("1.aif");
  start(second, {"2.wav"});
  waitForFile("2.aif");
  EXPECT_EQ(first.state(), QProcess::Running);
  EXPECT_EQ(second.state(), QProcess::Running);
  end(first);
  end(second);
}

TEST_F(Start, ConvertsNamesThatAreNotUtf8) {
  writeWavs({"Fl\xF6te.wav"});
  QProcess shell;
  start(shell, {"-c", "exec \"$0\" Fl*.wav", CORVANA_PROGRAM}, "sh");
  waitForFile("Fl\xF6te.aif");
  end(shell);
}

}  // namespace
}  // namespace corvana::test
