#include "app/main_window.hpp"

#include <QAction>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/eliding_label.hpp"
#include "app/qt_values.hpp"
#include "platform/bundle_info.hpp"
#include "platform/texts.hpp"
#include "update_window/check_for_updates.hpp"
#include "vocabulary/text_format.hpp"

namespace corvana {
namespace {

constexpr QSize firstSize{860, 660};
constexpr int margin = 16;
constexpr int spacing = 12;
constexpr int minDropViewHeight = 150;
constexpr int barHeight = 8;

/// An option of the user, with what it does in a tool tip.
QCheckBox* makeOption(const std::string& title, const std::string& toolTip) {
  auto* checkbox = new QCheckBox(qtText(title));
  checkbox->setToolTip(qtText(toolTip));
  return checkbox;
}

}  // namespace

MainWindow::MainWindow(AppDelegate* appDelegate) : controller_(appDelegate) {
  setWindowTitle(qtText(bundleValue(mainBundleInfo(), bundleNameKey)));
  makeViews();
  makeMenus();
  resize(firstSize);
  controller_.viewDidLoad();
}

void MainWindow::makeViews() {
  auto* dropView = new DropView;
  dropView->setMinimumHeight(minDropViewHeight);
  dropView->setAccessibleName(qtText(localised("Drop area for files and folders")));
  (new QVBoxLayout(dropView))->addWidget(makeInvitation(), 0, Qt::AlignCenter);

  QCheckBox* subfolder = makeOption(localised("Write into a &subfolder named AIFF or WAV"),
                                    localised("Keeps converted files apart from their originals."));
  QCheckBox* overwrite =
      makeOption(localised("&Replace existing files"),
                 localised("Otherwise a numbered name is chosen, such as “song (1).aif”. "
                           "Originals are never changed."));

  auto* progress = new QProgressBar;
  progress->setTextVisible(false);
  progress->setFixedHeight(barHeight);
  progress->setAccessibleName(qtText(localised("Progress")));

  auto* status = new ElidingLabel;
  status->setAccessibleName(qtText(localised("Status")));

  auto* counts = new QToolButton;
  counts->setAutoRaise(true);
  counts->setToolTip(qtText(localised("Shows the next file that failed or has warnings.")));
  // The views below stay where they are when it appears.
  QSizePolicy keepsItsPlace = counts->sizePolicy();
  keepsItsPlace.setRetainSizeWhenHidden(true);
  counts->setSizePolicy(keepsItsPlace);
  counts->hide();

  auto* log = new LogView;
  log->setPlaceholderText(qtText(localised("Converted files and their warnings appear here.")));
  log->setAccessibleName(qtText(localised("Log")));

  findBar_ = new FindBar(*log);

  auto* options = new QVBoxLayout;
  options->setSpacing(spacing / 2);
  options->addWidget(subfolder);
  options->addWidget(overwrite);

  auto* run = new QVBoxLayout;
  run->setSpacing(spacing / 2);
  auto* statusRow = new QHBoxLayout;
  statusRow->addWidget(status, 1);
  statusRow->addWidget(counts);
  run->addLayout(statusRow);
  run->addWidget(progress);

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
  layout->addWidget(dropView, 2);
  layout->addLayout(below, 5);
  setCentralWidget(content);

  controller_.dropView = dropView;
  controller_.subfolderCheckbox = subfolder;
  controller_.overwriteCheckbox = overwrite;
  controller_.progressIndicator = progress;
  controller_.statusLabel = status;
  controller_.countsButton = counts;
  controller_.logView = log;
  connect(subfolder, &QCheckBox::clicked, &controller_, &ViewController::subfolderChanged);
  connect(overwrite, &QCheckBox::clicked, &controller_, &ViewController::overwriteChanged);
  connect(counts, &QToolButton::clicked, log, &LogView::showNextProblem);
}

QWidget* MainWindow::makeInvitation() {
  auto* text = new QLabel(qtText(localised("Drop WAV or AIFF files or folders here")));
  QFont font = text->font();
  font.setPointSizeF(font.pointSizeF() * 1.3);
  text->setFont(font);

  auto* button = new QPushButton(qtText(localised("&Choose Files or Folders…")));
  // Some styles leave a text this long no room at its sides.
  button->setMinimumWidth(button->sizeHint().width() + 2 * spacing);
  connect(button, &QPushButton::clicked, &controller_, &ViewController::openDocument);

  auto* invitation = new QWidget;
  auto* layout = new QVBoxLayout(invitation);
  layout->setSpacing(spacing);
  layout->addWidget(text, 0, Qt::AlignCenter);
  layout->addWidget(button, 0, Qt::AlignCenter);
  return invitation;
}

void MainWindow::makeMenus() {
  QMenu* file = menuBar()->addMenu(qtText(localised("&File")));
  file->addAction(qtText(localised("&Open…")), QKeySequence::Open, &controller_,
                  &ViewController::openDocument);
  file->addSeparator();
  file->addAction(qtText(localised("&Quit")), Qt::CTRL | Qt::Key_Q, this, &MainWindow::close);

  makeLogMenus();

  QMenu* help = menuBar()->addMenu(qtText(localised("&Help")));
  if (offersUpdateCheck()) {
    help->addAction(qtText(localised("Check for &Updates…")), &controller_,
                    &ViewController::mnuCheckForUpdates);
    help->addSeparator();
  }
  help->addAction(qtText(localised("&About Corvana")), this, &MainWindow::showAbout);
}

void MainWindow::makeLogMenus() {
  LogView* log = controller_.logView;
  QMenu* edit = menuBar()->addMenu(qtText(localised("&Edit")));
  QAction* copy =
      edit->addAction(qtText(localised("&Copy")), QKeySequence::Copy, log, &LogView::copy);
  copy->setEnabled(false);
  connect(log, &LogView::copyAvailable, copy, &QAction::setEnabled);
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

void MainWindow::showAbout() {
  auto* about = new QMessageBox(this);
  about->setAttribute(Qt::WA_DeleteOnClose);
  about->setWindowTitle(qtText(localised("About Corvana")));
  about->setIconPixmap(windowIcon().pixmap(64));
  about->setText(
      qtText(fillText(localised("Corvana %@"), {bundleValue(mainBundleInfo(), bundleVersionKey)})));
  about->setInformativeText(
      qtText(localised("Converts sampled instruments between WAV and AIFF and keeps their loops, "
                       "markers, cue points, root key, tuning, gain and ranges.")));
  about->open();
}

void MainWindow::closeEvent(QCloseEvent* event) {
  controller_.stop();
  event->accept();
  // Also when a window of the program is still open. Later, since the end of the event loop
  // closes all windows, and this one is just being closed.
  QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
}

}  // namespace corvana
