// The area of the window that takes dropped files and folders.
#pragma once

#include <QPointer>
#include <QWidget>
#include <QWindow>
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

/// A dashed rounded frame, tinted while a drag that carries files is over it, and stronger while
/// the pointer is over it or the keyboard in it. Draws no text.
class DropView : public QWidget {
  Q_OBJECT
 public:
  explicit DropView(QWidget* parent = nullptr);

  /// From the edges of the view to its frame.
  static constexpr int inset = 6;

  /// May be empty: drops are then accepted and go nowhere.
  QPointer<DropViewDelegate> delegate;

  /// Takes what is dropped anywhere on `window` as well, where no other view does.
  void takeDropsOn(QWidget& window);

  /// Whether a drag that carries files is over the view, or another place that it takes drops on.
  bool isHighlighted() const { return isHighlighted_; }

  /// The files and folders of this machine that a drag carries, in its order.
  static std::vector<std::filesystem::path> droppedFileURLs(const QMimeData& data);

 signals:
  void clicked();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dragLeaveEvent(QDragLeaveEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void followDrag(QDropEvent& event);
  void setHighlighted(bool highlighted);
  void setHovered(bool hovered);
  QColor tint() const;
  QColor frameColour() const;

  bool isHighlighted_ = false;
  bool isHovered_ = false;         // underMouse() is true for drags that are refused as well
  QPointer<QWindow> draggedOver_;  // while highlighted
};

}  // namespace corvana
