#include "app/drop_view.hpp"

#include <QAccessibleWidget>
#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QPainter>
#include <QPainterPath>

#include "app/qt_values.hpp"
#include "app/quiet_colour.hpp"

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

QAccessibleInterface* makeAccessible(const QString& className, QObject* object) {
  if (className != QLatin1String(DropView::staticMetaObject.className())) return nullptr;
  return new QAccessibleWidget(static_cast<DropView*>(object), QAccessible::Grouping);
}

}  // namespace

DropView::DropView(QWidget* parent) : QWidget(parent) {
  QAccessible::installFactory(makeAccessible);
  setAcceptDrops(true);
  connect(qApp, &QApplication::focusChanged, this, qOverload<>(&QWidget::update));
}

void DropView::takeDropsOn(QWidget& window) {
  window.setAcceptDrops(true);
  window.installEventFilter(this);
}

std::vector<std::filesystem::path> DropView::droppedFileURLs(const QMimeData& data) {
  return pathsOfURLs(data.urls());
}

bool DropView::eventFilter(QObject* watched, QEvent* event) {
  if (watched == draggedOver_) {
    // The pointer is free again: the program that the drag came from has ended without a word.
    // The toolkit sends drags here as well, and has to hand them to the views itself.
    for (const QEvent::Type type :
         {QEvent::Enter, QEvent::Leave, QEvent::MouseButtonPress, QEvent::MouseMove})
      if (event->type() == type) setHighlighted(false);
    return false;
  }
  switch (event->type()) {
    case QEvent::DragEnter:
      dragEnterEvent(static_cast<QDragEnterEvent*>(event));
      return true;
    case QEvent::DragMove:
      dragMoveEvent(static_cast<QDragMoveEvent*>(event));
      return true;
    case QEvent::DragLeave:
      dragLeaveEvent(static_cast<QDragLeaveEvent*>(event));
      return true;
    case QEvent::Drop:
      dropEvent(static_cast<QDropEvent*>(event));
      return true;
    default:
      return false;
  }
}

void DropView::dragEnterEvent(QDragEnterEvent* event) {
  followDrag(*event);
}

void DropView::dragMoveEvent(QDragMoveEvent* event) {
  // After a drag that ended without a word the next one begins like this.
  followDrag(*event);
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

void DropView::enterEvent(QEnterEvent* /*event*/) {
  setHovered(true);
}

void DropView::leaveEvent(QEvent* /*event*/) {
  setHovered(false);
}

void DropView::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && rect().contains(event->pos())) emit clicked();
}

void DropView::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  QPainterPath outline;
  outline.addRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), cornerRadius,
                         cornerRadius);
  if (isHighlighted_) painter.fillPath(outline, tint());
  QPen pen(frameColour(), lineWidth);
  pen.setCapStyle(Qt::FlatCap);
  pen.setDashPattern({dashDrawn / lineWidth, dashLeftOut / lineWidth});  // in line widths
  painter.strokePath(outline, pen);
}

void DropView::followDrag(QDropEvent& event) {
  // The drag of a result out of the log would convert it back.
  const bool isOurs = event.source() != nullptr;
  if (isOurs || !event.possibleActions().testFlag(Qt::CopyAction) ||
      droppedFileURLs(*event.mimeData()).empty()) {
    setHighlighted(false);
    event.ignore();
    return;
  }
  setHighlighted(true);
  answerCopy(event);
}

void DropView::setHighlighted(bool highlighted) {
  if (highlighted == isHighlighted_) return;
  isHighlighted_ = highlighted;
  if (draggedOver_) draggedOver_->removeEventFilter(this);
  draggedOver_ = highlighted ? window()->windowHandle() : nullptr;
  if (draggedOver_) draggedOver_->installEventFilter(this);
  update();
}

void DropView::setHovered(bool hovered) {
  isHovered_ = hovered;
  update();
}

QColor DropView::tint() const {
  QColor colour = palette().color(QPalette::Highlight);
  colour.setAlphaF(tintAlpha);
  return colour;
}

QColor DropView::frameColour() const {
  const bool isInKeyboardsHands = window()->testAttribute(Qt::WA_KeyboardFocusChange) &&
                                  isAncestorOf(QApplication::focusWidget());
  if (isHovered_ || isInKeyboardsHands) return palette().color(QPalette::WindowText);
  QList<QColor> grounds{palette().color(QPalette::Window)};
  if (isHighlighted_) grounds << blended(tint(), grounds.front());
  return quietColour(palette(), QPalette::WindowText, grounds);
}

}  // namespace corvana
