#include "app/log_layout.hpp"

#include <QTextBlock>
#include <QTextLayout>
#include <cmath>

namespace corvana {
namespace {

/// What stands before the text of a warning.
const QString warningSign = QStringLiteral("   \u26A0\uFE0E ");

}  // namespace

QRectF LogLayout::blockBoundingRect(const QTextBlock& block) const {
  const QRectF rect = QPlainTextDocumentLayout::blockBoundingRect(block);
  if (!block.isValid() || block.layout()->lineCount() < 2) return rect;
  if (indent(block)) emit const_cast<LogLayout*>(this)->documentSizeChanged(documentSize());
  return QPlainTextDocumentLayout::blockBoundingRect(block);
}

bool LogLayout::indent(QTextBlock block) {
  QTextLayout& layout = *block.layout();
  const QTextLine first = layout.lineAt(0);
  const qreal width = first.width();
  const bool isIndented = layout.lineAt(1).width() < width;
  if (isIndented || !block.text().startsWith(warningSign)) return false;
  const qreal start = first.x();
  const qreal inset =
      std::abs(first.cursorToX(static_cast<int>(warningSign.size())) - first.cursorToX(0));
  if (inset > width / 2) return false;
  const bool isRightToLeft = layout.textOption().textDirection() == Qt::RightToLeft;
  layout.beginLayout();
  qreal height = 0;
  for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
    const qreal taken = line.lineNumber() == 0 ? 0 : inset;
    line.setLeadingIncluded(true);
    line.setLineWidth(width - taken);
    line.setPosition({isRightToLeft ? start : start + taken, height});
    height += line.height();
  }
  layout.endLayout();
  if (layout.lineCount() == block.lineCount()) return false;
  block.setLineCount(layout.lineCount());
  return true;
}

}  // namespace corvana
