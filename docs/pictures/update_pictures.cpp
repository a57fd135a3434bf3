// update_pictures OUT [ICON]: pictures of the update window's four states in the language of the
// environment, as OUT/update-STATE-LANGUAGE.png (scripts/make-pictures).

#include <QApplication>
#include <QDir>
#include <QIcon>
#include <cstdio>

#include "platform/texts.hpp"
#include "update/simple_encrypt_text.hpp"
#include "update/version_file.hpp"
#include "update_window/vantor_window_controller.hpp"

namespace {

constexpr const char16_t* versionFile =
    u"$APP$:Corvana\n"
    u"$VERMAC$ 1.2\n"
    u"$INFOMAC$ Reads large files faster.#+#Names the chunk that is damaged.\n"
    u"$URLMAC$ https://www.corvana.example/resources/downloads/Corvana-1.2.tar.xz\n"
    u"$URLINFO$ https://www.corvana.example/\n"
    u"$\n"
    u"$APP$:Corvana\n"
    u"$VERMAC$ 1.1\n"
    u"$INFOMAC$ Keeps cue points of files without loops.\n"
    u"$\n";

corvana::VantorErgebnis answerFor(const char16_t* installedVersion) {
  return corvana::parseVersionFile(corvana::simpleEncryptText(versionFile, true), u"Corvana",
                                   installedVersion);
}

}  // namespace

int main(int argumentCount, char** argumentValues) {
  if (argumentCount < 2 || argumentCount > 3) {
    std::fprintf(stderr, "Usage: update_pictures OUT [ICON]\n");
    return 2;
  }
  qputenv("QT_QPA_PLATFORM", "offscreen");
  if (!qEnvironmentVariableIsSet("QT_SCALE_FACTOR")) qputenv("QT_SCALE_FACTOR", "2");
  corvana::useSystemLanguage(CORVANA_PROGRAM_FOLDER);
  QApplication application(argumentCount, argumentValues);
  QApplication::setStyle("Fusion");
  if (argumentCount == 3)
    QApplication::setWindowIcon(QIcon(QString::fromLocal8Bit(argumentValues[2])));
  const QDir folder(QString::fromLocal8Bit(argumentValues[1]));
  if (!folder.mkpath(".")) return 1;

  corvana::VantorWindowController controller;
  const bool isGerman = corvana::localised("Close", corvana::TextTable::vantor) != "Close";
  bool complete = true;
  const auto take = [&](const char* state) {
    const QString name = QString("update-%1-%2.png").arg(state, isGerman ? "de" : "en");
    QApplication::sendPostedEvents();  // the layout
    if (!controller.grab().save(folder.filePath(name))) complete = false;
  };
  // The request is given up at once: the end of it must not come between the pictures.
  const auto open = [&](const char* installedVersion) {
    controller.startUpdateCheck("Corvana", installedVersion, "https://127.0.0.1:1/");
    controller.windowWillClose();
    controller.showLoadingState();
  };
  open("1.0");
  take("loading");
  controller.showResult(answerFor(u"1.0"), 200);
  take("new-version");
  open("1.2");
  controller.showResult(answerFor(u"1.2"), 200);
  take("up-to-date");
  controller.showLoadingState();
  controller.showResult({}, 0);
  take("unavailable");
  controller.close();
  return complete ? 0 : 1;
}
