#include "app/main_window.hpp"

#include <QAction>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QMenuBar>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>
#include <chrono>

#include "app/about_box.hpp"
#include "app/eliding_label.hpp"
#include "app/help_window.hpp"
#include "app/invitation.hpp"
#include "app/paste_files.hpp"
#include "app/qt_values.hpp"
#include "platform/bundle_info.hpp"
#include "platform/texts.hpp"
#include "update_window/check_for_updates.hpp"

namespace corvana {
namespace {

constexpr QSize firstSize{54, 42};  // in lines of text
/// Room for what the desktop puts around a window.
constexpr QSize windowFrame{16, 48};
constexpr int margin = 16;
constexpr int spacing = 12;
constexpr int minLogHeight = 48;
constexpr int barHeight = 8;

/// For the block being written. Whoever quits does not wait longer for a disk or network.
constexpr std::chrono::milliseconds maxStopTime{300};

/// An option of the user, with what it does in a tool tip.
QCheckBox* makeOption(const std::string& title, const std::string& toolTip) {
  auto* checkbox = new QCheckBox(qtText(title));
  checkbox->setToolTip(qtText(toolTip));
  return checkbox;
}

std::string whereOutputsGo(bool useSubfolder, bool overwrite) {
  if (useSubfolder)
    return overwrite ? localised(
                           "Outputs go into a subfolder beside each original and replace "
                           "older files of their names there.")
                     : localised(
                           "Outputs go into a subfolder beside each original; where a name "
                           "is taken, the output gets a number.");
  return overwrite ? localised(
                         "Outputs go beside their originals and replace older files of "
                         "their names.")
                   : localised(
                         "Outputs go beside their originals; where a name is taken, the "
                         "output gets a number.");
}

}  // namespace

MainWindow::MainWindow(AppDelegate* appDelegate) : controller_(appDelegate) {
  setWindowTitle(qtText(bundleValue(mainBundleInfo(), bundleNameKey)));
  makeViews();
  makeMenus();
  resize((firstSize * fontMetrics().height()).boundedTo(screen()->availableSize() - windowFrame));
  controller_.viewDidLoad();
  connect(&controller_, &ViewController::runEnded, this, &MainWindow::runEnded);
  // The end of the session does not wait for answers.
  connect(
      qApp, &QGuiApplication::commitDataRequest, this, [this] { quitsUnasked_ = true; },
      Qt::DirectConnection);
}

void MainWindow::makeViews() {
  auto* dropView = new DropView;
  dropView->takeDropsOn(*this);
  dropView->setAccessibleName(qtText(localised("Drop area for files and folders")));
  dropView->setAccessibleDescription(
      qtText(localised("Files and folders that are dropped here are converted.")));
  auto* invitation = new Invitation;
  auto* dropLayout = new QVBoxLayout(dropView);
  constexpr int insideFrame = DropView::inset + spacing;
  dropLayout->setContentsMargins(insideFrame, insideFrame, insideFrame, insideFrame);
  dropLayout->addWidget(invitation);

  QCheckBox* subfolder = makeOption(localised("Write into a &subfolder named AIFF or WAV"),
                                    localised("Keeps converted files apart from their originals."));
  QCheckBox* overwrite =
      makeOption(localised("&Replace existing files"),
                 localised("Otherwise a numbered name is chosen, such as “song (1).aif”. "
                           "Originals are never changed."));

  auto* outputs = new QLabel;
  outputs->setWordWrap(true);
  const auto sayWhere = [=] {
    outputs->setText(qtText(whereOutputsGo(subfolder->isChecked(), overwrite->isChecked())));
  };
  connect(subfolder, &QCheckBox::toggled, outputs, sayWhere);
  connect(overwrite, &QCheckBox::toggled, outputs, sayWhere);
  sayWhere();

  auto* progress = new QProgressBar;
  progress->setTextVisible(false);
  progress->setFixedHeight(barHeight);
  progress->setAccessibleName(qtText(localised("Progress")));

  auto* stopAction = new QAction(qtText(localised("&Stop")), this);
  stopAction->setToolTip(
      qtText(localised("Ends the run. The file being written stays incomplete.")));
  stopAction->setShortcut(Qt::CTRL | Qt::Key_Period);
  stopAction->setEnabled(false);
  connect(stopAction, &QAction::triggered, &controller_, &ViewController::stopRun);
  auto* stop = new QToolButton;
  stop->setDefaultAction(stopAction);
  stop->setFocusPolicy(Qt::StrongFocus);
  stop->hide();

  auto* status = new ElidingLabel;

  auto* counts = new QToolButton;
  counts->setAutoRaise(true);
  counts->setToolTip(qtText(localised("Shows the next file that failed or has warnings.")));
  // The views below stay where they are when it appears.
  QSizePolicy keepsItsPlace = counts->sizePolicy();
  keepsItsPlace.setRetainSizeWhenHidden(true);
  counts->setSizePolicy(keepsItsPlace);
  counts->hide();

  auto* hint = new NewsLabel;
  hint->setTextFormat(Qt::PlainText);
  hint->setWordWrap(true);
  hint->hide();

  auto* log = new LogView;
  log->setMinimumHeight(minLogHeight);
  log->setPlaceholderText(qtText(localised("Converted files and their warnings appear here.")));
  log->setAccessibleName(qtText(localised("Log")));

  findBar_ = new FindBar(*log);

  auto* options = new QVBoxLayout;
  options->setSpacing(spacing / 2);
  options->addWidget(subfolder);
  options->addWidget(overwrite);
  options->addWidget(outputs);

  auto* run = new QVBoxLayout;
  run->setSpacing(spacing / 2);
  auto* statusRow = new QHBoxLayout;
  statusRow->addWidget(status, 1);
  statusRow->addWidget(counts);
  run->addLayout(statusRow);
  auto* progressRow = new QHBoxLayout;
  progressRow->addWidget(progress, 1);
  progressRow->addWidget(stop);
  progressRow->addStrut(stop->sizeHint().height());  // only the bar gives way to it
  run->addLayout(progressRow);
  run->addWidget(hint);

  // The frame of the drop view, not its edge, stands in line with the views below it.
  constexpr int outside = margin - DropView::inset;
  auto* below = new QVBoxLayout;
  below->setContentsMargins(DropView::inset, 0, DropView::inset, DropView::inset);
  below->setSpacing(spacing);
  below->addLayout(options);
  below->addLayout(run);
  below->addWidget(log, 1);
  below->addWidget(findBar_);

  auto* content = new QWidget;
  auto* layout = new QVBoxLayout(content);
  layout->setContentsMargins(outside, outside, outside, outside);
  layout->setSpacing(spacing - DropView::inset);
  layout->addWidget(dropView, 3);
  layout->addLayout(below, 4);
  setCentralWidget(content);

  controller_.dropView = dropView;
  controller_.subfolderCheckbox = subfolder;
  controller_.overwriteCheckbox = overwrite;
  controller_.progressIndicator = progress;
  controller_.statusLabel = status;
  controller_.stopButton = stop;
  controller_.countsButton = counts;
  controller_.hintLabel = hint;
  controller_.logView = log;
  connect(subfolder, &QCheckBox::clicked, &controller_, &ViewController::subfolderChanged);
  connect(overwrite, &QCheckBox::clicked, &controller_, &ViewController::overwriteChanged);
  connect(counts, &QToolButton::clicked, log, &LogView::showNextProblem);
  connect(invitation, &Invitation::chosen, &controller_, &ViewController::openDocument);
  connect(dropView, &DropView::clicked, &controller_, &ViewController::openDocument);
  // Whoever has got results knows where to drop, and wants to read.
  connect(log, &LogView::textChanged, dropView,
          [dropView] { dropView->setMaximumHeight(dropView->minimumSizeHint().height()); });
}

void MainWindow::makeMenus() {
  QMenu* file = menuBar()->addMenu(qtText(localised("&File")));
  file->addAction(qtText(localised("&Open…")), QKeySequence::Open, &controller_,
                  &ViewController::openDocument);
  file->addAction(controller_.stopButton->defaultAction());
  file->addSeparator();
  file->addAction(qtText(localised("&Quit")), Qt::CTRL | Qt::Key_Q, this, &MainWindow::close);

  makeLogMenus();

  QMenu* help = menuBar()->addMenu(qtText(localised("&Help")));
  help->addAction(qtText(localised("Corvana &Help")), QKeySequence::HelpContents, this,
                  [this] { showHelp(*this); });
  help->addSeparator();
  if (offersUpdateCheck()) {
    help->addAction(qtText(localised("Check for &Updates…")), &controller_,
                    &ViewController::mnuCheckForUpdates);
    help->addSeparator();
  }
  help->addAction(qtText(localised("&About Corvana")), this, [this] { showAbout(*this); });
}

void MainWindow::makeLogMenus() {
  LogView* log = controller_.logView;
  QMenu* edit = menuBar()->addMenu(qtText(localised("&Edit")));
  QAction* copy =
      edit->addAction(qtText(localised("&Copy")), QKeySequence::Copy, log, &LogView::copy);
  copy->setEnabled(false);
  connect(log, &LogView::copyAvailable, copy, &QAction::setEnabled);
  auto* paste = new PasteFilesAction(qtText(localised("Pas&te Files")), this);
  connect(paste, &PasteFilesAction::filesPasted, &controller_, &ViewController::filesDropped);
  edit->addAction(paste);
  QAction* selectAll = edit->addAction(qtText(localised("Select &All")), QKeySequence::SelectAll,
                                       log, &LogView::selectAll);
  edit->addSeparator();
  QAction* find =
      edit->addAction(qtText(localised("&Find…")), QKeySequence::Find, findBar_, &FindBar::open);
  edit->addAction(qtText(localised("Find &Next")), Qt::CTRL | Qt::Key_G, findBar_,
                  &FindBar::findNext);
  edit->addAction(qtText(localised("Find &Previous")), Qt::CTRL | Qt::SHIFT | Qt::Key_G, findBar_,
                  &FindBar::findPrevious);

  QMenu* menu = menuBar()->addMenu(qtText(localised("&Log")));
  menu->addAction(qtText(localised("&Next Failure or Warning")), Qt::Key_F3, log,
                  &LogView::showNextProblem);
  menu->addAction(qtText(localised("&Previous Failure or Warning")), Qt::SHIFT | Qt::Key_F3, log,
                  &LogView::showPreviousProblem);
  menu->addSeparator();
  QAction* show =
      menu->addAction(qtText(localised("Show in &File Manager")), log, &LogView::showInFileManager);
  QAction* copyPath = menu->addAction(qtText(localised("&Copy Path")), log, &LogView::copyPaths);
  for (QAction* action : {show, copyPath})
    action->setEnabled(false);
  connect(log, &LogView::filesChosen, menu, [show, copyPath](std::ptrdiff_t count) {
    show->setEnabled(count > 0 && count <= LogView::maxShownFiles);
    copyPath->setEnabled(count > 0);
  });
  menu->addSeparator();
  QAction* save = menu->addAction(qtText(localised("&Save Log As…")), QKeySequence::Save, log,
                                  &LogView::saveAs);
  menu->addSeparator();
  menu->addAction(qtText(localised("&Larger Text")), log, [log] { log->zoomBy(1); })
      ->setShortcuts({QKeySequence::ZoomIn, Qt::CTRL | Qt::Key_Equal});
  menu->addAction(qtText(localised("S&maller Text")), QKeySequence::ZoomOut, log,
                  [log] { log->zoomBy(-1); });
  menu->addAction(qtText(localised("N&ormal Text Size")), Qt::CTRL | Qt::Key_0, log,
                  &LogView::resetZoom);

  const auto separator = [log] {
    auto* line = new QAction(log);
    line->setSeparator(true);
    return line;
  };
  log->addActions({show, copyPath, separator(), copy, selectAll, separator(), find, save});
}

void MainWindow::askBeforeQuitting() {
  if (quitQuestion_ || isQuitting_) return;
  quitQuestion_ = new QuitQuestion(*controller_.statusLabel, this);
  connect(quitQuestion_, &QDialog::finished, this, [this] { quitQuestion_.clear(); });
  connect(quitQuestion_, &QuitQuestion::stopChosen, this, [this] {
    isQuitting_ = true;
    QTimer::singleShot(maxStopTime, this, [this] {
      quitsUnasked_ = true;
      close();
    });
    controller_.stopToQuit();
  });
  quitQuestion_->open();  // modal to its window only
}

void MainWindow::runEnded() {
  if (!quitQuestion_ && !isQuitting_) return;
  if (quitQuestion_) quitQuestion_->close();
  close();
}

void MainWindow::closeEvent(QCloseEvent* event) {
  if (controller_.driver().totalFiles() > 0 && !quitsUnasked_) {
    event->ignore();
    return askBeforeQuitting();
  }
  controller_.stop();
  event->accept();
  // Also when a window of the program is still open. Later, since the end of the event loop
  // closes all windows, and this one is just being closed.
  QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
}

}  // namespace corvana
