// The help inside the program.
#pragma once

#include <QDialog>
#include <QMainWindow>
#include <QTextBrowser>

namespace corvana {

/// Stands beside the main window; Escape closes it. Follows the user's colours and text size.
class HelpWindow : public QDialog {
  Q_OBJECT
 public:
  explicit HelpWindow(QMainWindow& parent);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void showText();

  QMainWindow& parent_;
  QTextBrowser* text_;
};

/// Opens the help, or brings it to the front where it is open.
void showHelp(QMainWindow& parent);

}  // namespace corvana
