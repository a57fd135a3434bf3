// The open panel: several files and several folders, chosen together.
#pragma once

#include <QFileDialog>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <filesystem>
#include <vector>

namespace corvana {

/// Shows audio files and folders, all files on request; changes nothing on the disk. Its confirm
/// button takes exactly what is selected in the list, folders included, or the files whose names
/// are typed, and is disabled where that is nothing. A double click goes into a folder, and so does
/// Enter behind a typed one: the button never takes that.
class OpenPanel : public QFileDialog {
  Q_OBJECT
 public:
  /// Starts in `folder`.
  OpenPanel(const QString& folder, QWidget* parent);
  ~OpenPanel() override;

  /// What the button takes: files and folders that are there, in the panel's order.
  std::vector<std::filesystem::path> chosenURLs() const;

  void accept() override;

 private:
  void nameChanged();
  void selectionChanged();
  QModelIndexList selectedRows() const;
  /// One path, or several in quotation marks.
  QStringList typedPaths() const;
  QStringList chosenPaths() const;
  void showWhetherChosen();

  QLineEdit& name_;
  QListView& list_;
  QPushButton& confirm_;
  const QList<QUrl> toolkitPlaces_;
  QString lastName_;      // as nameChanged has seen it
  bool isTyped_ = false;  // the name field was changed last, not the selection
};

}  // namespace corvana
