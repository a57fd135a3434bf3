// corvana-bench-window CLI FILES [ROUNDS]: drops a folder of FILES small instruments on the window
// and prints the longest time for which its event loop stood still, and how long the run took
// beside the command line program CLI on equal files.

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <limits>

#include "app/main_window.hpp"
#include "wav/wav_writer.hpp"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t bytesPerFile = 16'384;

/// A folder of its own for every run: on some file systems replacing many files is far slower
/// than making them, and the second run would pay for the first.
fs::path makeInstruments(const fs::path& folder, int count) {
  fs::create_directories(folder);
  const corvana::ByteBuffer samples(bytesPerFile, 0x11);
  corvana::WavContent content{.channels = 1, .sampleSize = 16, .sampleRate = 44100};
  content.frameCount = bytesPerFile / 2;
  content.metadata.instrument.emplace();
  content.metadata.loops = {{.start = 100, .end = 4000}};
  const corvana::SurroundingBytes surrounding = corvana::writeWav(content);
  for (int i = 0; i < count; ++i) {
    const fs::path path = folder / ("instrument " + std::to_string(i) + ".wav");
    std::ofstream file(path, std::ios::binary);
    for (const corvana::ByteView part :
         {corvana::ByteView(surrounding.header), corvana::ByteView(samples),
          corvana::ByteView(surrounding.trailer)})
      file.write(reinterpret_cast<const char*>(part.data()), std::ssize(part));
  }
  return folder;
}

/// Milliseconds.
struct Figures {
  double run = std::numeric_limits<double>::infinity();
  double longestStall = 0;
  double longestWork = 0;  ///< processor time of the event loop between two beats
};

double workOfThread() {
  timespec time{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

Figures runWindow(const fs::path& folder) {
  corvana::MainWindow window;
  window.show();
  QCoreApplication::processEvents();

  Figures figures;
  QElapsedTimer run;
  run.start();
  window.controller().processURLs({folder});
  // The search is over. From now on the loop comes round again and again, or it stands still.
  QElapsedTimer sinceBeat;
  sinceBeat.start();
  double workAtBeat = workOfThread();
  QTimer beat;
  QObject::connect(&beat, &QTimer::timeout, [&] {
    figures.longestStall =
        std::max(figures.longestStall, static_cast<double>(sinceBeat.nsecsElapsed()) / 1e6);
    figures.longestWork = std::max(figures.longestWork, workOfThread() - workAtBeat);
    workAtBeat = workOfThread();
    sinceBeat.start();
  });
  beat.start(1);
  while (window.controller().driver().totalFiles() > 0)
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  figures.run = static_cast<double>(run.nsecsElapsed()) / 1e6;
  return figures;
}

double runCommandLine(const QString& program, const fs::path& folder) {
  QProcess process;
  process.setStandardOutputFile(QProcess::nullDevice());
  process.setStandardErrorFile(QProcess::nullDevice());
  QElapsedTimer run;
  run.start();
  process.start(program, {QString::fromStdString(folder.native())});
  if (!process.waitForFinished(-1) || process.exitCode() != 0) {
    std::fprintf(stderr, "corvana-bench-window: the command line program failed\n");
    std::exit(1);
  }
  return static_cast<double>(run.nsecsElapsed()) / 1e6;
}

}  // namespace

int main(int argumentCount, char** argumentValues) {
  QApplication application(argumentCount, argumentValues);
  if (argumentCount < 3) {
    std::fprintf(stderr, "Usage: corvana-bench-window CLI FILES [ROUNDS]\n");
    return 2;
  }
  const int files = std::atoi(argumentValues[2]);
  const int rounds = argumentCount > 3 ? std::atoi(argumentValues[3]) : 7;
  const QTemporaryDir folder;
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder.path());
  const fs::path parent = folder.path().toStdString();

  // Other programs only ever make a run longer: the shortest says most.
  Figures window;
  double commandLine = window.run;
  for (int i = 0; i < rounds; ++i) {
    const std::string number = std::to_string(i);
    const Figures figures = runWindow(makeInstruments(parent / ("window " + number), files));
    window.run = std::min(window.run, figures.run);
    window.longestStall = std::max(window.longestStall, figures.longestStall);
    window.longestWork = std::max(window.longestWork, figures.longestWork);
    commandLine = std::min(
        commandLine,
        runCommandLine(argumentValues[1], makeInstruments(parent / ("cli " + number), files)));
  }
  std::printf("%d files, %d rounds\n", files, rounds);
  std::printf("longest stall of the event loop       %7.1f ms\n", window.longestStall);
  std::printf("  most processor time it used at once %7.1f ms\n", window.longestWork);
  std::printf("shortest run in the window            %7.1f ms\n", window.run);
  std::printf("shortest run of the command line      %7.1f ms\n", commandLine);
  return 0;
}
