// The area of the window that takes dropped files and folders.
#pragma once

#include <QPointer>
#include <QWidget>
#include <filesystem>
#include <vector>

class QMimeData;

namespace corvana {

/// Receives what was dropped. A QObject, so that the view can hold it weakly.
class DropViewDelegate : public QObject {
  Q_OBJECT
 public:
  /// `urls` is never empty. Called from the event loop, after the drop itself has ended.
  virtual void filesDropped(const std::vector<std::filesystem::path>& urls) = 0;
};

/// A dashed rounded frame, tinted while a drag that carries files is over it. Draws no text.
class DropView : public QWidget {
  Q_OBJECT
 public:
  explicit DropView(QWidget* parent = nullptr);

  /// From the edges of the view to its frame.
  static constexpr int inset = 6;

  /// May be empty: drops are then accepted and go nowhere.
  QPointer<DropViewDelegate> delegate;

  /// Whether a drag that carries files is over the view.
  bool isHighlighted() const { return isHighlighted_; }

  /// The files and folders of this machine that a drag carries, in its order.
  static std::vector<std::filesystem::path> droppedFileURLs(const QMimeData& data);

 protected:
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dragLeaveEvent(QDragLeaveEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void setHighlighted(bool highlighted);

  bool isHighlighted_ = false;
};

}  // namespace corvana
