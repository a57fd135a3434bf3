#include "app/invitation.hpp"

#include <QEvent>
#include <QPainter>
#include <array>

#include "app/qt_values.hpp"
#include "app/quiet_colour.hpp"
#include "platform/texts.hpp"

namespace corvana {
namespace {

constexpr int spacing = 12;
constexpr double titleScale = 1.3;

/// The sound of the program's icon, in a colour that stands back.
class SoundIcon : public QWidget {
 public:
  using QWidget::QWidget;

  QSize sizeHint() const override {
    return {3 * fontMetrics().height(), 2 * fontMetrics().height()};
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    constexpr std::array heights{0.26, 0.62, 1.0, 0.54, 0.26};  // of the bars
    const double step = width() / static_cast<double>(heights.size());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(
        {quietColour(palette(), QPalette::WindowText, {palette().color(QPalette::Window)}),
         step / 2, Qt::SolidLine, Qt::RoundCap});
    const double middle = height() / 2.0;
    for (std::size_t i = 0; i < heights.size(); ++i) {
      const double x = (static_cast<double>(i) + 0.5) * step;
      const double half = heights[i] * (middle - step / 4);
      painter.drawLine(QPointF(x, middle - half), QPointF(x, middle + half));
    }
  }
};

}  // namespace

Invitation::Invitation(QWidget* parent)
    : QWidget(parent),
      layout_(new QBoxLayout(QBoxLayout::TopToBottom, this)),
      icon_(new SoundIcon),
      title_(new QLabel(qtText(localised("Drop WAV or AIFF files or folders here")))),
      detail_(new QLabel(
          qtText(localised("They are converted at once: WAV to AIFF and AIFF to WAV.")))),
      button_(new QPushButton(qtText(localised("&Choose Files or Folders…")))) {
  connect(button_, &QPushButton::clicked, this, &Invitation::chosen);
  layout_->setSizeConstraint(QLayout::SetNoConstraint);
  layout_->setContentsMargins(0, 0, 0, 0);
  layout_->setSpacing(spacing);
  layout_->addStretch();
  for (QWidget* view : {icon_, static_cast<QWidget*>(title_), static_cast<QWidget*>(detail_),
                        static_cast<QWidget*>(button_)})
    layout_->addWidget(view, 0, Qt::AlignCenter);
  layout_->addStretch();
  followFont();
}

QSize Invitation::minimumSizeHint() const {
  return button_->sizeHint();
}

void Invitation::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange) followFont();
}

void Invitation::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  arrange();
}

void Invitation::followFont() {
  // Some styles leave a text this long no room at its sides.
  button_->setMinimumWidth(0);
  button_->setMinimumWidth(button_->sizeHint().width() + 2 * spacing);
  arrange();
}

void Invitation::arrange() {
  QFont large = font();
  large.setPointSizeF(large.pointSizeF() * titleScale);
  title_->setFont(large);
  if (title_->sizeHint().width() > width()) title_->setFont(font());
  const QSize title = title_->sizeHint();
  const QSize detail = detail_->sizeHint();
  const QSize button = button_->sizeHint();
  const bool isTall = height() >= icon_->sizeHint().height() + title.height() + detail.height() +
                                      button.height() + 3 * spacing;
  layout_->setDirection(isTall ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
  icon_->setVisible(isTall);
  detail_->setVisible(isTall && width() >= detail.width());
  title_->setVisible(width() >= title.width() + (isTall ? 0 : spacing + button.width()));
}

}  // namespace corvana
