// A line of text that gives way in the middle where the window is too narrow for it.
#pragma once

#include "update_window/news_label.hpp"

namespace corvana {

/// `text()` is always the whole text; the tool tip shows it where it is not to be seen whole.
class ElidingLabel : public NewsLabel {
  Q_OBJECT
 public:
  explicit ElidingLabel(QWidget* parent = nullptr);

  QSize minimumSizeHint() const override;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  /// What fits, line feeds shown as spaces.
  QString visibleText() const;
};

}  // namespace corvana
