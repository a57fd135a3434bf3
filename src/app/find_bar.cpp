#include "app/find_bar.hpp"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPushButton>

#include "app/isolates.hpp"
#include "app/qt_values.hpp"
#include "platform/texts.hpp"
#include "update_window/news_label.hpp"

namespace corvana {

FindBar::FindBar(QPlainTextEdit& log, QWidget* parent)
    : QWidget(parent), log_(log), text_(new QLineEdit), missing_(new NewsLabel) {
  text_->setPlaceholderText(qtText(localised("Find in the log")));
  text_->setAccessibleName(qtText(localised("Find in the log")));
  text_->setClearButtonEnabled(true);
  text_->setAcceptDrops(false);  // files are for the window
  missing_->setText(qtText(localised("Not found")));
  QSizePolicy keepsItsPlace = missing_->sizePolicy();
  keepsItsPlace.setRetainSizeWhenHidden(true);
  missing_->setSizePolicy(keepsItsPlace);
  missing_->hide();

  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(text_, 1);
  layout->addWidget(missing_);
  const auto addButton = [&](const std::string& title, auto slot) {
    auto* button = new QPushButton(qtText(title));
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, slot);
    layout->addWidget(button);
  };
  addButton(localised("Previous"), &FindBar::findPrevious);
  addButton(localised("Next"), &FindBar::findNext);
  addButton(localised("Close"), &FindBar::dismiss);
  connect(text_, &QLineEdit::textEdited, this, &FindBar::findWhileTyping);
  hide();
}

void FindBar::open() {
  show();
  text_->setFocus(Qt::ShortcutFocusReason);
  text_->selectAll();
}

void FindBar::dismiss() {
  hide();
  log_.setFocus(Qt::OtherFocusReason);
}

void FindBar::findNext() {
  find({});
}

void FindBar::findPrevious() {
  find(QTextDocument::FindBackward);
}

void FindBar::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) return dismiss();
  const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (!isReturn || !text_->hasFocus()) return QWidget::keyPressEvent(event);
  find((event->modifiers() & Qt::ShiftModifier) != 0 ? QTextDocument::FindBackward
                                                     : QTextDocument::FindFlags());
}

void FindBar::findWhileTyping() {
  QTextCursor start = log_.textCursor();
  start.setPosition(start.selectionStart());
  log_.setTextCursor(start);
  missing_->hide();
  if (!text_->text().isEmpty()) find({});
}

void FindBar::find(QTextDocument::FindFlags direction) {
  if (text_->text().isEmpty()) return open();
  const QTextDocument& document = *log_.document();
  const QRegularExpression text = findingText(text_->text());
  QTextCursor found = document.find(text, log_.textCursor(), direction);
  if (found.isNull()) {
    QTextCursor edge = log_.textCursor();
    edge.movePosition(direction == QTextDocument::FindBackward ? QTextCursor::End
                                                               : QTextCursor::Start);
    found = document.find(text, edge, direction);
  }
  missing_->setVisible(found.isNull());
  if (found.isNull()) return;
  log_.setTextCursor(found);
  log_.ensureCursorVisible();
}

}  // namespace corvana
