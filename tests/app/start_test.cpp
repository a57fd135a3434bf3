// The program itself, started once and again, on a session bus of its own and without one.

#include <QDir>
#include <QProcess>
#include <QTest>
#include <gtest/gtest.h>

#include "app/qt_values.hpp"
#include "app/session_bus.hpp"
#include "platform/bundle_info.hpp"
#include "support/audio_builder.hpp"
#include "support/temporary_folder.hpp"

namespace corvana::test {
namespace {

constexpr int patience = 20'000;  // ms

class Start : public testing::Test {
 protected:
  void start(QProcess& program, const QStringList& arguments,
             const QString& executable = CORVANA_PROGRAM) {
    program.setProcessEnvironment(environmentOn(bus, folder));
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
  writeWavs({"1.wav", "-2.wav", "Flöte #3 100%.wav"});
  QProcess first;
  start(first, {"1.wav"});
  waitForFile("1.aif");

  for (const auto& [arguments, output] :
       {std::pair(QStringList{"--", "-2.wav"}, "-2.aif"),
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
}

TEST_F(Start, EveryStartHasAWindowWithoutASessionBus) {
  writeWavs({"1.wav", "Fl\xF6te.wav"});
  QProcess first;
  QProcess second;
  start(first, {"1.wav"});
  waitForFile("1.aif");
  start(second, {"-c", "exec \"$0\" Fl*.wav 2>&-", CORVANA_PROGRAM}, "sh");
  waitForFile("Fl\xF6te.aif");
  EXPECT_EQ(first.state(), QProcess::Running);
  EXPECT_EQ(second.state(), QProcess::Running);
  EXPECT_EQ(fs::read_symlink("/proc/" + std::to_string(second.processId()) + "/fd/2"), "/dev/null")
      << "a closed stream is not taken for another file";
  end(first);
  end(second);
}

TEST_F(Start, AnswersOptions) {
  const std::string version = bundleValue(mainBundleInfo(), bundleVersionKey);
  const char* withScreen = "QT_QPA_PLATFORM=offscreen";
  const char* withoutScreen = "QT_QPA_PLATFORM=";
  for (const auto& [screen, option, status, output] :
       {std::tuple(withScreen, "--version", 0, "Corvana " + version + "\n"),
        {withScreen, "--help-all", 0, "--platform "},
        {withScreen, "--x\x1b\n", 1, "Corvana: Unknown option 'x\uFFFD\uFFFD'.\n"},
        {withoutScreen, "-v", 0, "Corvana " + version + "\n"},
        {withoutScreen, "--help", 0, "Usage: "},
        {withoutScreen, "--x", 1, "Corvana: Unknown option 'x'.\n"},
        {withoutScreen, "1.wav", 1, "Corvana: There is no screen to show a window on."}}) {
    QProcess program;
    program.setProcessChannelMode(QProcess::MergedChannels);
    start(program,
          {"-uDISPLAY", "-uWAYLAND_DISPLAY", "-uXDG_SESSION_TYPE", screen, CORVANA_PROGRAM, option},
          "env");
    EXPECT_TRUE(program.waitForFinished(patience));
    EXPECT_EQ(program.exitCode(), status) << option;
    EXPECT_TRUE(program.readAll().contains(output.c_str())) << option;
  }
}

}  // namespace
}  // namespace corvana::test
