// Files that were copied in a file manager, pasted into the program.
#pragma once

#include <QAction>
#include <filesystem>
#include <vector>

class QMimeData;

namespace corvana {

/// The files and folders of this machine that a clipboard holds, in its order. Cut ones are no
/// different: they are only read.
std::vector<std::filesystem::path> copiedFiles(const QMimeData& data);

/// The menu's command, enabled while the clipboard holds such files.
class PasteFilesAction : public QAction {
  Q_OBJECT
 public:
  PasteFilesAction(const QString& title, QObject* parent);

 signals:
  /// `urls` is never empty.
  void filesPasted(const std::vector<std::filesystem::path>& urls);

 private:
  void checkClipboard();
  void paste();

  bool isChecked_ = false;  // the clipboard, as it is now
};

}  // namespace corvana
