#include "app/view_controller.hpp"

#include <QDir>
#include <QFontDatabase>
#include <cmath>
#include <cstdio>
#include <utility>

#include "app/clash_question.hpp"
#include "app/open_panel.hpp"
#include "app/preferences.hpp"
#include "app/qt_values.hpp"
#include "platform/bundle_info.hpp"
#include "platform/texts.hpp"
#include "update_window/check_for_updates.hpp"

namespace corvana {
namespace {

constexpr const char* subfolderKey = "UseAIFFSubfolder";
constexpr const char* overwriteKey = "OverwriteExisting";

/// The bar counts in whole numbers.
constexpr int progressSteps = 100'000;

QFont makeLogFont() {
  constexpr int points = 11;
  const QString menlo = QStringLiteral("Menlo");
  if (QFontDatabase::hasFamily(menlo)) return {menlo, points};
  QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
  font.setPointSize(points);
  return font;
}

/// Such as "19,601 converted · 400 failed · 1,600 with warnings".
std::string countsText(const RunCounts& counts) {
  std::string text;
  const auto add = [&text](const std::string& part) { text += (text.empty() ? "" : " · ") + part; };
  if (counts.converted > 0) add(localisedCount("%ld converted", "%ld converted", counts.converted));
  if (counts.failed > 0) add(localisedCount("%ld failed", "%ld failed", counts.failed));
  if (counts.withWarnings > 0)
    add(localisedCount("%ld with warnings", "%ld with warnings", counts.withWarnings));
  return text;
}

}  // namespace

ViewController::ViewController(AppDelegate* appDelegate)
    : logFont(makeLogFont()),
      appDelegate_(appDelegate),
      openPanelFolder_(QDir::homePath()),
      mainQueue_([this] { showChanges(); }),
      driver_(*this, mainQueue_, std::make_unique<SerialQueue>("corvana.convert")) {}

void ViewController::viewDidLoad() {
  dropView->delegate = this;
  // The text colour stays the palette's, so that it follows the theme.
  logView->setFont(logFont);
  subfolderCheckbox->setChecked(preference(subfolderKey));
  overwriteCheckbox->setChecked(preference(overwriteKey));
  progressIndicator->setRange(0, progressSteps);
  progressIndicator->setValue(0);
  statusLabel->setText(qtText(localised("Ready.")));
  if (!appDelegate_) return;
  appDelegate_->mainViewController = this;
  if (const auto urls = std::exchange(appDelegate_->pendingURLs, {}); !urls.empty())
    processURLs(urls);
}

void ViewController::processURLs(const std::vector<std::filesystem::path>& urls) {
  driver_.processURLs(urls);
  showChanges();
}

void ViewController::filesDropped(const std::vector<std::filesystem::path>& urls) {
  processURLs(urls);
}

void ViewController::showOpenPanel() {
  auto* panel = new OpenPanel(openPanelFolder_, window());
  panel->setAttribute(Qt::WA_DeleteOnClose);
  connect(panel, &QDialog::finished, this, [this, panel](int result) {
    openPanelFolder_ = panel->directory().absolutePath();
    if (result == QDialog::Accepted) processURLs(panel->chosenURLs());
  });
  panel->open();  // modal to its window only
}

void ViewController::stop() {
  driver_.stop();
}

void ViewController::stopToQuit() {
  isQuitting_ = true;
  stopRun();
}

void ViewController::stopRun() {
  driver_.stopRun();
  showChanges();
}

QWidget* ViewController::window() const {
  return dropView->window();
}

BatchOptions ViewController::options() const {
  return {.useSubfolder = subfolderCheckbox->isChecked(),
          .overwrite = overwriteCheckbox->isChecked()};
}

void ViewController::runStarted() {
  logView->startRun();
  showHint({});
  changes_.counts = true;
}

void ViewController::setStatus(const std::string& text) {
  changes_.status = text;
}

void ViewController::setProgress(double fraction) {
  changes_.progress = fraction;
}

void ViewController::appendLog(const LogEntry& entry) {
  logView->append(entry);
  changes_.counts = true;
  if (isQuitting_ && entry.outcome == Outcome::failed)
    std::fprintf(stderr, "corvana: %s\n", entry.screenText().c_str());
}

void ViewController::batchStarted(const std::vector<AudioFile>& files,
                                  const BatchOptions& options) {
  // A person who overwrites files beside their inputs has been asked.
  if (options.overwrite && !options.useSubfolder) return;
  constexpr bool besideInputs = false;
  const NameClashes counterparts = findNameClashes(files, besideInputs);
  if (counterparts.count == 0) return;
  showHint(qtText(localisedCount(
      "%ld file lies beside one of the same name in the other format, perhaps an earlier output, "
      "and is converted as well. You can stop the run; outputs in subfolders stay apart.",
      "%ld files lie beside one of the same name in the other format, perhaps an earlier output, "
      "and are converted as well. You can stop the run; outputs in subfolders stay apart.",
      counterparts.count)));
}

void ViewController::confirmReplacingInputs(const NameClash& example,
                                            const std::function<void(InputClash)>& answer) {
  const auto ask = [this, example, answer] {
    auto* question = new ClashQuestion(example, window());
    connect(question, &ClashQuestion::answered, this, [this, answer](InputClash clash) {
      answer(clash);
      showChanges();
    });
    question->open();  // modal to its window only
  };
  QMetaObject::invokeMethod(this, ask, Qt::QueuedConnection);
}

void ViewController::showChanges() {
  const Changes changes = std::exchange(changes_, {});
  if (changes.status) statusLabel->setText(screenLine(*changes.status));
  if (changes.progress)
    progressIndicator->setValue(static_cast<int>(std::lround(*changes.progress * progressSteps)));
  logView->showAppended();
  announceRun();
  if (changes.counts) showCounts();
  if (changes.status) readAloud();
  const bool isRunning = driver_.totalFiles() > 0;
  stopButton->setVisible(isRunning);
  stopButton->defaultAction()->setEnabled(isRunning && !driver_.isStoppingRun());
  if (std::exchange(showsRun_, isRunning) && !isRunning) emit runEnded();
}

void ViewController::showCounts() {
  const RunCounts& counts = logView->counts();
  countsButton->setText(qtText(countsText(counts)));
  countsButton->setVisible(!countsButton->text().isEmpty());
  const bool hasProblems = counts.failed + counts.withWarnings > 0;
  // With nothing to lead to it is a text.
  countsButton->setFocusPolicy(hasProblems ? Qt::StrongFocus : Qt::NoFocus);
  countsButton->setAttribute(Qt::WA_TransparentForMouseEvents, !hasProblems);
  QFont font = countsButton->font();
  font.setUnderline(hasProblems);
  countsButton->setFont(font);
}

/// The start and the end of a run; in between the progress bar speaks for itself.
void ViewController::readAloud() {
  const bool isRunning = driver_.totalFiles() > 0;
  const bool isNews = !isRunning || !startWasRead_;
  startWasRead_ = isRunning;
  if (!isNews) return;
  statusLabel->setAccessibleDescription(isRunning ? QString() : countsButton->text());
  statusLabel->announce();
}

void ViewController::announceRun() {
  announcer_.update(*window(), {.isRunning = driver_.totalFiles() > 0,
                                .progress = progressIndicator->value() / double{progressSteps},
                                .status = statusLabel->text(),
                                .failed = logView->counts().failed,
                                .withWarnings = logView->counts().withWarnings});
}

void ViewController::storeCheckboxState(const QCheckBox& sender, const char* key) {
  const QString trouble = storePreference(key, sender.isChecked());
  if (!trouble.isEmpty() && !std::exchange(saidNotStored_, true)) showHint(trouble);
}

void ViewController::subfolderChanged() {
  storeCheckboxState(*subfolderCheckbox, subfolderKey);
}

void ViewController::overwriteChanged() {
  storeCheckboxState(*overwriteCheckbox, overwriteKey);
}

void ViewController::showHint(QString hint) {
  // A path is to have places to break at.
  hint.replace(QLatin1Char('/'), QStringLiteral("/\u200B"));
  hintLabel->setText(hint);
  hintLabel->setVisible(!hint.isEmpty());
}

void ViewController::openDocument() {
  showOpenPanel();
}

void ViewController::mnuCheckForUpdates() {
  checkForUpdates(mainBundleInfo());
}

}  // namespace corvana
