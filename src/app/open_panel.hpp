// The open panel: several files and several folders, chosen together.
#pragma once

#include <QFileDialog>
#include <filesystem>
#include <vector>

namespace corvana {

/// Shows audio files and folders, all files on request. Its confirm button takes what is
/// selected, folders included. A double click goes into a folder, and so does Enter behind its
/// typed name.
class OpenPanel : public QFileDialog {
  Q_OBJECT
 public:
  /// Starts in `folder`.
  OpenPanel(const QString& folder, QWidget* parent);

  /// What was confirmed, in the panel's order.
  std::vector<std::filesystem::path> chosenURLs() const;

  void accept() override;
};

}  // namespace corvana
