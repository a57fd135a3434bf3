// window_pictures EXAMPLES OUT LANGUAGE THEME...: pictures OUT/STATE-THEME[-LANGUAGE].png of the
// window in the themes light, dark and contrast, while it converts the example instruments of
// folder EXAMPLES (make_example_instruments) into subfolders beside them.

#include <QApplication>
#include <QDir>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QSettings>
#include <QStyle>
#include <QTemporaryDir>
#include <cstdio>
#include <filesystem>
#include <vector>

#include "app/main_window.hpp"
#include "platform/texts.hpp"
#include "vocabulary/text_format.hpp"

namespace {

/// Coloured edges suit one kind of screen only.
QFont greyEdged(QFont font) {
  font.setStyleStrategy(QFont::NoSubpixelAntialias);
  return font;
}

QPalette makePalette(const QColor& ground, const QColor& base, const QColor& text,
                     const QColor& highlight, const QColor& highlightedText) {
  QPalette palette(ground.lighter(125), ground);
  for (const QPalette::ColorRole role :
       {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    palette.setColor(role, text);
  palette.setColor(QPalette::Base, base);
  palette.setColor(QPalette::Highlight, highlight);
  palette.setColor(QPalette::HighlightedText, highlightedText);
  // As some desktops have it on every ground.
  palette.setColor(QPalette::PlaceholderText, QColor(0, 0, 0, 128));
  return palette;
}

QPalette paletteOf(const QString& theme) {
  const QColor ground(0x2b, 0x2d, 0x30);
  const QColor text(0xe4, 0xe4, 0xe6);
  if (theme == "dark")
    return makePalette(ground, ground.darker(130), text, {0x3d, 0x7a, 0xb8}, text);
  if (theme == "contrast")
    return makePalette(Qt::black, {0x2a, 0x2a, 0x2a}, Qt::white, Qt::yellow, Qt::black);
  return QApplication::style()->standardPalette();
}

class Pictures {
 public:
  /// `suffix` of the names.
  Pictures(std::filesystem::path examples, const QDir& folder, QString suffix)
      : examples_(std::move(examples)), folder_(folder), suffix_(std::move(suffix)) {}

  /// Whether all pictures could be written.
  bool take() {
    {
      corvana::MainWindow window;
      prepare(window);
      take(window, "resting");
      drag(*window.controller().dropView);
      take(window, "highlighted");
    }
    {
      corvana::MainWindow window;
      prepare(window);
      convert(window.controller(), {examples_ / "Bass", examples_ / "Experiments"});
      // In the middle of the next file: said in the driver's place, since the examples are too
      // short to be caught at it.
      corvana::ViewController& controller = window.controller();
      controller.setStatus(
          corvana::fillText(corvana::localised("Converting %@ …"), {"Church Organ G3.aifc"}));
      controller.setProgress(4.5 / 8);
      controller.showChanges();
      controller.stopButton->show();
      controller.stopButton->defaultAction()->setEnabled(true);
      take(window, "running");
    }
    corvana::MainWindow window;
    prepare(window);
    convert(window.controller(), {examples_});
    take(window, "done");
    return complete_;
  }

 private:
  static void prepare(corvana::MainWindow& window) {
    corvana::ViewController& controller = window.controller();
    controller.logView->setFont(greyEdged(controller.logView->font()));
    // The screen that there is not must not bound it.
    window.resize(QSize(54, 42) * window.fontMetrics().height());
    window.show();
  }

  void drag(QWidget& dropView) const {
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(QString::fromStdString(examples_.native()))});
    QDragEnterEvent enter(dropView.rect().center(), Qt::CopyAction, &files, Qt::LeftButton,
                          Qt::NoModifier);
    QApplication::sendEvent(&dropView, &enter);
  }

  static void convert(corvana::ViewController& controller,
                      const std::vector<std::filesystem::path>& folders) {
    // The outputs of an earlier call must not become inputs, nor change the names.
    controller.subfolderCheckbox->setChecked(true);
    controller.overwriteCheckbox->setChecked(true);
    controller.processURLs(folders);
    while (controller.driver().totalFiles() > 0)
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }

  void take(QWidget& window, const char* state) {
    QCoreApplication::processEvents();
    const QString path = folder_.filePath(QString("%1-%2.png").arg(state, suffix_));
    if (!window.grab().save(path, "PNG", 0)) complete_ = false;
  }

  std::filesystem::path examples_;
  QDir folder_;
  QString suffix_;
  bool complete_ = true;
};

}  // namespace

int main(int argumentCount, char** argumentValues) {
  if (argumentCount < 5) {
    std::fprintf(stderr, "Usage: window_pictures EXAMPLES OUT LANGUAGE THEME...\n");
    return 2;
  }
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("QT_LOGGING_RULES", "qt.qpa.*=false");
  if (!qEnvironmentVariableIsSet("QT_SCALE_FACTOR")) qputenv("QT_SCALE_FACTOR", "2");
  const QByteArray language = argumentValues[3];
  qputenv("LC_ALL", "C.UTF-8");
  qputenv("LANGUAGE", language);
  corvana::useSystemLanguage(CORVANA_PROGRAM_FOLDER);
  QApplication application(argumentCount, argumentValues);
  QApplication::setStyle("Fusion");
  QFont font = greyEdged(QApplication::font());
  bool hasSize = false;
  const int points = qEnvironmentVariableIntValue("FONT_POINTS", &hasSize);
  font.setPointSize(hasSize ? points : 10);  // as on most desktops
  QApplication::setFont(font);
  const QTemporaryDir preferences;
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, preferences.path());
  const QDir folder(QString::fromLocal8Bit(argumentValues[2]));
  if (!folder.mkpath(".")) return 1;

  bool complete = true;
  for (int i = 4; i < argumentCount; ++i) {
    const QString theme = argumentValues[i];
    QApplication::setPalette(paletteOf(theme));
    const QString suffix = language == "en" ? theme : theme + "-" + language;
    complete = Pictures(argumentValues[1], folder, suffix).take() && complete;
  }
  return complete ? 0 : 1;
}
