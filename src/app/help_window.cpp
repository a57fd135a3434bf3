#include "app/help_window.hpp"

#include <QDialogButtonBox>
#include <QEvent>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QStyle>
#include <QVBoxLayout>

#include "app/help_text.hpp"
#include "app/qt_values.hpp"
#include "app/quiet_colour.hpp"
#include "platform/texts.hpp"

namespace corvana {
HelpWindow::HelpWindow(QMainWindow& parent)
    : QDialog(&parent, Qt::Window), parent_(parent), text_(new QTextBrowser) {
  setWindowTitle(qtText(localised("Corvana Help")));
  text_->setAccessibleName(qtText(localised("Help")));
  text_->setFrameShape(QFrame::NoFrame);
  text_->document()->setDocumentMargin(16);
  text_->document()->setIndentWidth(16);
  auto* buttons = new QDialogButtonBox;
  buttons->addButton(qtText(localised("Close")), QDialogButtonBox::RejectRole);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(text_);
  const int margin = style()->pixelMetric(QStyle::PM_LayoutRightMargin);
  buttons->setContentsMargins(margin, 0, margin, margin);
  layout->addWidget(buttons);
  const int letter = fontMetrics().averageCharWidth();
  resize(QSize(100 * letter, 110 * letter).boundedTo(screen()->availableSize() * 0.9));
  text_->setFocus();
  showText();
}

void HelpWindow::changeEvent(QEvent* event) {
  QDialog::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) showText();
}

void HelpWindow::showText() {
  const int place = text_->verticalScrollBar()->value();
  QColor line = palette().color(QPalette::Text);
  line.setAlphaF(0.25F);
  text_->setHtml(helpText(*parent_.menuBar(), blended(line, palette().color(QPalette::Base))));
  text_->verticalScrollBar()->setValue(place);
}

void showHelp(QMainWindow& parent) {
  auto* help = parent.findChild<HelpWindow*>();
  if (help == nullptr) help = new HelpWindow(parent);
  help->show();
  help->raise();
  help->activateWindow();
}

}  // namespace corvana
