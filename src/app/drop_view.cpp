#include "app/drop_view.hpp"

#include <QDropEvent>
#include <QMimeData>
#include <QPainter>
#include <QPainterPath>

#include "app/qt_values.hpp"

namespace corvana {
namespace {

// In points of the window.
constexpr double cornerRadius = 10;
constexpr double lineWidth = 2;
constexpr double dashDrawn = 8;
constexpr double dashLeftOut = 5;
constexpr float tintAlpha = 0.35F;

/// Never anything but a copy: after a move the other program deletes the files.
void answerCopy(QDropEvent& event) {
  event.setDropAction(Qt::CopyAction);
  event.accept();
}

}  // namespace

DropView::DropView(QWidget* parent) : QWidget(parent) {
  setAcceptDrops(true);
}

std::vector<std::filesystem::path> DropView::droppedFileURLs(const QMimeData& data) {
  return pathsOfURLs(data.urls());
}

void DropView::dragEnterEvent(QDragEnterEvent* event) {
  if (!event->possibleActions().testFlag(Qt::CopyAction) ||
      droppedFileURLs(*event->mimeData()).empty()) {
    event->ignore();
    return;
  }
  setHighlighted(true);
  answerCopy(*event);
}

void DropView::dragMoveEvent(QDragMoveEvent* event) {
  // Comes only for drags that were accepted on entry.
  answerCopy(*event);
}

void DropView::dragLeaveEvent(QDragLeaveEvent* /*event*/) {
  setHighlighted(false);
}

void DropView::dropEvent(QDropEvent* event) {
  setHighlighted(false);
  const std::vector<std::filesystem::path> urls = droppedFileURLs(*event->mimeData());
  if (urls.empty()) {
    event->ignore();
    return;
  }
  answerCopy(*event);
  // Later: the program that the drag comes from waits until this function returns.
  const auto handOver = [this, urls] {
    if (delegate) delegate->filesDropped(urls);
  };
  QMetaObject::invokeMethod(this, handOver, Qt::QueuedConnection);
}

void DropView::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  QPainterPath outline;
  outline.addRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), cornerRadius,
                         cornerRadius);
  if (isHighlighted_) {
    QColor tint = palette().color(QPalette::Highlight);
    tint.setAlphaF(tintAlpha);
    painter.fillPath(outline, tint);
  }
  QPen pen(palette().color(QPalette::PlaceholderText), lineWidth);
  pen.setCapStyle(Qt::FlatCap);
  pen.setDashPattern({dashDrawn / lineWidth, dashLeftOut / lineWidth});  // in line widths
  painter.strokePath(outline, pen);
}

void DropView::setHighlighted(bool highlighted) {
  isHighlighted_ = highlighted;
  update();
}

}  // namespace corvana
