// Asks whether a run is to be stopped where the window is closed during it.
#pragma once

#include <QLabel>
#include <QMessageBox>

namespace corvana {

/// Deletes itself when closed. Escape and Return go on converting.
class QuitQuestion : public QMessageBox {
  Q_OBJECT
 public:
  /// `status`, which outlives it, tells what is being converted.
  QuitQuestion(const QLabel& status, QWidget* parent);

 signals:
  /// Not when the run is to go on.
  void stopChosen();

 private:
  void showStatus();

  const QLabel& status_;
  const QString consequence_;
};

}  // namespace corvana
