#include "app/eliding_label.hpp"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

namespace corvana {

ElidingLabel::ElidingLabel(QWidget* parent) : NewsLabel(parent) {
  setTextFormat(Qt::PlainText);
  setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

QSize ElidingLabel::minimumSizeHint() const {
  return {0, fontMetrics().height()};
}

bool ElidingLabel::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return NewsLabel::event(event);
  const bool isWhole = visibleText() == text();
  // Marked as rich text, so that it is escaped text in any case: a file name could be markup.
  const QString tip = QStringLiteral("<qt>%1</qt>").arg(text().toHtmlEscaped());
  QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), isWhole ? QString() : tip, this);
  return true;
}

void ElidingLabel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  style()->drawItemText(&painter, contentsRect(), static_cast<int>(alignment()), palette(),
                        isEnabled(), visibleText(), foregroundRole());
}

QString ElidingLabel::visibleText() const {
  QString line = text();
  line.replace(QLatin1Char('\n'), QLatin1Char(' '));
  return fontMetrics().elidedText(line, Qt::ElideMiddle, contentsRect().width());
}

}  // namespace corvana
