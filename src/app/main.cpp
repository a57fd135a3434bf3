// corvana: the desktop program.

#include <QCommandLineParser>
#include <QDir>
#include <QIcon>
#include <QLibraryInfo>
#include <QTranslator>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <system_error>

#include "app/application.hpp"
#include "app/desktop_bus.hpp"
#include "app/main_window.hpp"
#include "app/qt_values.hpp"
#include "platform/bundle_info.hpp"
#include "platform/ending.hpp"
#include "platform/standard_streams.hpp"
#include "platform/texts.hpp"
#include "vocabulary/screen_text.hpp"

namespace {

namespace fs = std::filesystem;

void describeProgram() {
  const corvana::BundleInfo& info = corvana::mainBundleInfo();
  const QString name = corvana::qtText(corvana::bundleValue(info, corvana::bundleNameKey));
  QCoreApplication::setApplicationName(name);
  QCoreApplication::setOrganizationName(name);
  QCoreApplication::setApplicationVersion(
      corvana::qtText(corvana::bundleValue(info, corvana::bundleVersionKey)));
  QGuiApplication::setDesktopFileName(corvana::desktopId);
}

/// Made by the build in several sizes, where it can; otherwise the installed one.
QIcon programIcon() {
  QIcon icon;
  for (const QFileInfo& size : QDir(QStringLiteral(":/icons")).entryInfoList())
    icon.addFile(size.filePath());
  return icon.isNull() ? QIcon::fromTheme(corvana::desktopId) : icon;
}

/// The toolkit's own texts: buttons of the open panel, context menu of the log.
void translateToolkit(QTranslator& translator) {
  if (translator.load(QLocale(), QStringLiteral("qtbase"), QStringLiteral("_"),
                      QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
    QCoreApplication::installTranslator(&translator);
}

[[noreturn]] void endForMistake(const QString& mistake) {
  const QString text = QCoreApplication::applicationName() + ": " + mistake;
  std::fprintf(stderr, "%s\n", corvana::readableLine(text.toStdString()).c_str());
  std::exit(EXIT_FAILURE);  // as after the help
}

/// Whose options the command line may hold.
enum class Options { ours, toolkitsToo };

/// Ends the program where the command line asks for its help or version, or is wrong.
void checkOptions(const QStringList& arguments, Options options) {
  QCommandLineParser parser;
  // As the toolkit writes its own: "-platform" is not "-p" and so on.
  parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
  parser.setApplicationDescription(corvana::qtText(
      corvana::localised("Converts sampled instruments between WAV and AIFF in a window. "
                         "corvana-cli does the same in a terminal.")));
  parser.addHelpOption();
  parser.addVersionOption();
  parser.addPositionalArgument(QStringLiteral("PATH"),
                               corvana::qtText(corvana::localised("Files and folders to convert")),
                               QStringLiteral("[PATH...]"));
  const bool isRight = parser.parse(arguments);
  if (options == Options::toolkitsToo && (!isRight || parser.isSet(QStringLiteral("help-all"))))
    return;  // the toolkit knows
  if (!isRight) endForMistake(parser.errorText());
  parser.process(arguments);
}

/// As far as can be told without trying: where there is none, the toolkit only aborts.
bool hasDisplay(int count, char** arguments) {
  const bool isNamed = std::any_of(arguments, arguments + count, [](std::string_view argument) {
    const std::string_view name = argument.substr(argument.starts_with("--") ? 1 : 0);
    return name == "-platform" || name == "-display";
  });
  for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY", "WAYLAND_SOCKET", "QT_QPA_PLATFORM"})
    if (!qEnvironmentVariableIsEmpty(variable)) return true;
  return isNamed || qgetenv("XDG_SESSION_TYPE") == "wayland";
}

/// What can be done before there is a window, or without one.
void answerOptions(int count, char** arguments) {
  const bool showsWindow = hasDisplay(count, arguments);
  const bool hasOptions = std::any_of(arguments + 1, arguments + count,
                                      [](const char* argument) { return argument[0] == '-'; });
  if (showsWindow && !hasOptions) return;
  const QCoreApplication application(count, arguments);
  QTranslator toolkitTexts;
  translateToolkit(toolkitTexts);
  checkOptions(QCoreApplication::arguments(), showsWindow ? Options::toolkitsToo : Options::ours);
  if (!showsWindow)
    endForMistake(corvana::qtText(corvana::localised(
        "There is no screen to show a window on. corvana-cli converts without one.")));
}

/// Files and folders of the command line, absolute, as paths or file URLs. From the bytes of
/// the arguments: as the toolkit's text a name that is not UTF-8 would be lost.
std::vector<fs::path> filesOfCommandLine(int count, char** arguments) {
  std::vector<fs::path> files;
  bool optionsEnded = false;
  std::error_code noCurrentFolder;  // then the path stays empty and leads nowhere
  for (int i = 1; i < count; ++i) {
    const std::string_view argument = arguments[i];
    if (!optionsEnded && argument == "--") {
      optionsEnded = true;
    } else if (argument.starts_with("file:")) {
      files.push_back(corvana::pathOfURL(QUrl(arguments[i])));
    } else if (optionsEnded || !argument.starts_with('-')) {
      files.push_back(fs::absolute(argument, noCurrentFolder));
    }
  }
  return files;
}

int run(int argumentCount, char** argumentValues) {
  corvana::useSystemLanguage(corvana::runningProgramFolder(argumentValues[0]));
  describeProgram();
  answerOptions(argumentCount, argumentValues);
  const QVariantMap launchTokens = corvana::launchTokens();
  corvana::Application application(argumentCount, argumentValues);
  QApplication::setWindowIcon(programIcon());
  QTranslator toolkitTexts;
  translateToolkit(toolkitTexts);
  checkOptions(QCoreApplication::arguments(), Options::ours);

  corvana::AppDelegate delegate;
  const std::vector<fs::path> files = filesOfCommandLine(argumentCount, argumentValues);
  if (corvana::joinDesktop(delegate, files, launchTokens) == corvana::DesktopRole::handedOver)
    return 0;
  delegate.openFiles(files);

  corvana::MainWindow window(&delegate);
  window.show();
  const int status = QApplication::exec();
  // The work thread stops after the current block of samples and is waited for, unless a disk or
  // network that does not answer holds it.
  corvana::endInTime();
  corvana::leaveDesktop();
  return status;
}

}  // namespace

int main(int argumentCount, char** argumentValues) {
  try {
    corvana::reserveStandardStreams();
    corvana::ignoreWriteSignals();
    return run(argumentCount, argumentValues);
  } catch (...) {
    corvana::endForException();
  }
}
