#include <QApplication>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <gtest/gtest.h>

#include "update_window/vantor_window_controller.hpp"

namespace corvana::test {
namespace {

TEST(UpdateWindowTextSize, FollowsTheUsersAndFitsItsFrames) {
  const QFont before = QApplication::font();
  int smaller = 0;
  for (const int points : {8, 20}) {
    QFont font = before;
    font.setPointSize(points);
    QApplication::setFont(font);
    VantorErgebnis ergebnis;
    ergebnis.neueVersionVorhanden = true;
    VantorWindowController window;
    window.showLoadingState();
    window.showResult(ergebnis, 200);
    EXPECT_EQ(window.findChild<QPlainTextEdit*>()->font().pointSize(), points);
    for (const auto* label : window.findChildren<QLabel*>())
      EXPECT_LE(label->hasHeightForWidth() ? label->heightForWidth(label->width())
                                           : label->sizeHint().height(),
                label->height());
    for (const auto* button : window.findChildren<QPushButton*>())
      EXPECT_EQ(button->sizeHint().boundedTo(button->size()), button->sizeHint());
    const int headline = window.findChild<QLabel*>("lblInfoBoldLine")->font().pixelSize();
    EXPECT_GT(headline, smaller);
    smaller = headline;
  }
  QApplication::setFont(before);
}

}  // namespace
}  // namespace corvana::test
