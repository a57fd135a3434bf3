// A wheel that turns while the program waits.
#pragma once

#include <QBasicTimer>
#include <QWidget>

namespace corvana {

/// Is to be seen only while it turns.
class SpinningWheel : public QWidget {
  Q_OBJECT
 public:
  explicit SpinningWheel(QWidget* parent);

  void startAnimation();
  void stopAnimation();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void timerEvent(QTimerEvent* event) override;

 private:
  QBasicTimer timer_;
  int step_ = 0;
};

}  // namespace corvana
