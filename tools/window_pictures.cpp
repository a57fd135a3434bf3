// window_pictures EXAMPLES OUT: pictures of the window, light and dark, while it converts the
// example instruments of folder EXAMPLES (make_example_instruments) into subfolders beside them.

#include <QApplication>
#include <QDir>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QSettings>
#include <QStyle>
#include <QTemporaryDir>
#include <cstdio>
#include <string>

#include "app/main_window.hpp"

namespace {

QPalette darkPalette() {
  const QColor ground(0x2b, 0x2d, 0x30);
  const QColor text(0xe4, 0xe4, 0xe6);
  QColor secondary = text;
  secondary.setAlphaF(0.5F);
  QPalette palette(ground.lighter(125), ground);
  for (const QPalette::ColorRole role :
       {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::HighlightedText})
    palette.setColor(role, text);
  palette.setColor(QPalette::Base, ground.darker(130));
  palette.setColor(QPalette::Highlight, QColor(0x3d, 0x7a, 0xb8));
  palette.setColor(QPalette::PlaceholderText, secondary);
  return palette;
}

class Pictures {
 public:
  Pictures(std::string examples, QDir folder, QString theme)
      : examples_(std::move(examples)), folder_(std::move(folder)), theme_(std::move(theme)) {}

  /// Whether all pictures could be written.
  bool take() {
    corvana::MainWindow window;
    corvana::ViewController& controller = window.controller();
    window.show();
    take(window, "resting");

    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(QString::fromStdString(examples_))});
    QDragEnterEvent enter(controller.dropView->rect().center(), Qt::CopyAction, &files,
                          Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(controller.dropView, &enter);
    take(window, "highlighted");
    QDragLeaveEvent leave;
    QApplication::sendEvent(controller.dropView, &leave);

    // The outputs of an earlier call must not become inputs, nor change the names.
    controller.subfolderCheckbox->setChecked(true);
    controller.overwriteCheckbox->setChecked(true);
    constexpr int filesBefore = 5;
    QObject::connect(controller.progressIndicator, &QProgressBar::valueChanged, [&] {
      if (controller.driver().finishedFiles() == filesBefore) take(window, "running");
    });
    controller.processURLs({examples_});
    while (controller.driver().totalFiles() > 0)
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    take(window, "done");
    return complete_;
  }

 private:
  void take(QWidget& window, const char* state) {
    const QString path = folder_.filePath(QString("%1-%2.png").arg(state, theme_));
    if (!window.grab().save(path)) complete_ = false;
  }

  std::string examples_;
  QDir folder_;
  QString theme_;
  bool complete_ = true;
};

}  // namespace

int main(int argumentCount, char** argumentValues) {
  if (argumentCount != 3) {
    std::fprintf(stderr, "Usage: window_pictures EXAMPLES OUT\n");
    return 2;
  }
  qputenv("QT_QPA_PLATFORM", "offscreen");
  if (!qEnvironmentVariableIsSet("QT_SCALE_FACTOR")) qputenv("QT_SCALE_FACTOR", "2");
  QApplication application(argumentCount, argumentValues);
  QApplication::setStyle("Fusion");
  const QTemporaryDir preferences;
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, preferences.path());
  const QDir folder(QString::fromLocal8Bit(argumentValues[2]));
  if (!folder.mkpath(".")) return 1;

  bool complete = Pictures(argumentValues[1], folder, "light").take();
  QApplication::setPalette(darkPalette());
  complete = Pictures(argumentValues[1], folder, "dark").take() && complete;
  return complete ? 0 : 1;
}
