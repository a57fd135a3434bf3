#include "app/paste_files.hpp"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include "app/drop_view.hpp"
#include "app/qt_values.hpp"

namespace corvana {

std::vector<std::filesystem::path> copiedFiles(const QMimeData& data) {
  std::vector<std::filesystem::path> files = DropView::droppedFileURLs(data);
  if (!files.empty()) return files;
  // All that some file managers give: "copy" or "cut", and behind it the URLs, one in each line.
  const QByteArray lines = data.data(QStringLiteral("x-special/gnome-copied-files"));
  QList<QUrl> urls;
  for (const QByteArray& line : lines.split('\n'))
    urls << QUrl::fromEncoded(line.trimmed());
  return pathsOfURLs(urls);
}

PasteFilesAction::PasteFilesAction(const QString& title, QObject* parent) : QAction(title, parent) {
  setShortcut(QKeySequence::Paste);
  setEnabled(false);
  connect(this, &QAction::triggered, this, &PasteFilesAction::paste);
  connect(QGuiApplication::clipboard(), &QClipboard::dataChanged, this, [this] {
    isChecked_ = false;
    checkClipboard();
  });
  connect(qApp, &QGuiApplication::applicationStateChanged, this, &PasteFilesAction::checkClipboard);
  checkClipboard();
}

void PasteFilesAction::checkClipboard() {
  // Not behind the user's back: the other program has to hand everything over, and under Wayland
  // it does so for the program in front only.
  if (isChecked_ || QGuiApplication::applicationState() != Qt::ApplicationActive) return;
  isChecked_ = true;
  const QMimeData* data = QGuiApplication::clipboard()->mimeData();
  setEnabled(data != nullptr && !copiedFiles(*data).empty());
}

void PasteFilesAction::paste() {
  const QMimeData* data = QGuiApplication::clipboard()->mimeData();
  if (data == nullptr) return;
  if (const auto files = copiedFiles(*data); !files.empty()) emit filesPasted(files);
}

}  // namespace corvana
