#include "app/quit_question.hpp"

#include <QPushButton>
#include <QTimer>
#include <chrono>

#include "app/qt_values.hpp"
#include "platform/texts.hpp"

namespace corvana {
namespace {

/// Names of short files would come and go faster than anybody reads.
constexpr std::chrono::milliseconds refreshInterval{500};

}  // namespace

QuitQuestion::QuitQuestion(const QLabel& status, QWidget* parent)
    : QMessageBox(parent),
      status_(status),
      consequence_(qtText(localised("If you stop now, the file being written stays incomplete."))) {
  setAttribute(Qt::WA_DeleteOnClose);
  setIcon(QMessageBox::Question);
  setWindowTitle(qtText(localised("Stop and Quit?")));
  setTextFormat(Qt::PlainText);
  QPushButton* stop = addButton(qtText(localised("&Stop and quit")), QMessageBox::DestructiveRole);
  QPushButton* goOn = addButton(qtText(localised("&Continue")), QMessageBox::RejectRole);
  setDefaultButton(goOn);
  setEscapeButton(goOn);
  connect(stop, &QPushButton::clicked, this, &QuitQuestion::stopChosen);

  showStatus();
  auto* refresh = new QTimer(this);
  connect(refresh, &QTimer::timeout, this, &QuitQuestion::showStatus);
  refresh->start(refreshInterval);
}

void QuitQuestion::showStatus() {
  // No wider than the line below it: the box keeps its size.
  const QFontMetrics metrics = fontMetrics();
  const QString status = metrics.elidedText(status_.text().simplified(), Qt::ElideMiddle,
                                            metrics.horizontalAdvance(consequence_));
  setText(status + QLatin1Char('\n') + consequence_);
}

}  // namespace corvana
