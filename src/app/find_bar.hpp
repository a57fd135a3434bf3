// The bar below the log that finds a text in it.
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

namespace corvana {

/// Hidden until it is opened; Escape closes it. Letters of any case are the same.
class FindBar : public QWidget {
  Q_OBJECT
 public:
  /// `log` outlives the bar.
  explicit FindBar(QPlainTextEdit& log, QWidget* parent = nullptr);

 public slots:
  /// Shows the bar, ready to type.
  void open();
  /// Hides the bar and goes back to the log.
  void dismiss();
  /// Select the next (previous) place; after the last comes the first. Open the bar where there is
  /// nothing to find yet.
  void findNext();
  void findPrevious();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  /// From the selection, which is found again where it still fits.
  void findWhileTyping();
  void find(QTextDocument::FindFlags direction);

  QPlainTextEdit& log_;
  QLineEdit* text_;
  QLabel* missing_;
};

}  // namespace corvana
