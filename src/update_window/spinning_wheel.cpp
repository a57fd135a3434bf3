#include "update_window/spinning_wheel.hpp"

#include <QPainter>
#include <QTimerEvent>
#include <algorithm>

namespace corvana {
namespace {

constexpr int spokeCount = 12;
constexpr int millisecondsPerStep = 80;

}  // namespace

SpinningWheel::SpinningWheel(QWidget* parent) : QWidget(parent) {
  hide();
}

void SpinningWheel::startAnimation() {
  timer_.start(millisecondsPerStep, this);
  show();
}

void SpinningWheel::stopAnimation() {
  timer_.stop();
  hide();
}

void SpinningWheel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(QRectF(rect()).center());
  const double radius = std::min(width(), height()) / 2.0 - 2;
  QColor color = palette().color(QPalette::WindowText);
  painter.rotate(360.0 * step_ / spokeCount);
  for (int spoke = 0; spoke < spokeCount; ++spoke) {  // the darkest one first, the palest last
    color.setAlphaF(1.0F - 0.9F * static_cast<float>(spoke) / spokeCount);
    painter.setPen(QPen(color, radius / 6, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(0, -radius * 0.55), QPointF(0, -radius));
    painter.rotate(-360.0 / spokeCount);
  }
}

void SpinningWheel::timerEvent(QTimerEvent* event) {
  if (event->timerId() != timer_.timerId()) {
    QWidget::timerEvent(event);
    return;
  }
  step_ = (step_ + 1) % spokeCount;
  update();
}

}  // namespace corvana
