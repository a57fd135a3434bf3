// The lines of the log on the screen.
#pragma once

#include <QPlainTextDocumentLayout>

namespace corvana {

/// Where a warning takes several lines, the further ones begin below its text, not below its sign.
class LogLayout : public QPlainTextDocumentLayout {
  Q_OBJECT
 public:
  using QPlainTextDocumentLayout::QPlainTextDocumentLayout;

  QRectF blockBoundingRect(const QTextBlock& block) const override;

 private:
  /// Whether the number of lines is another one now.
  static bool indent(QTextBlock block);
};

}  // namespace corvana
