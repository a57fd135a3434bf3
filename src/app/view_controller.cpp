#include "app/view_controller.hpp"

#include <QDir>
#include <QFontDatabase>
#include <QSettings>
#include <cmath>
#include <utility>

#include "app/clash_question.hpp"
#include "app/open_panel.hpp"
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

void restoreCheckboxState(QCheckBox& checkbox, const char* key) {
  checkbox.setChecked(QSettings().value(QLatin1String(key), false).toBool());
}

void storeCheckboxState(const QCheckBox& sender, const char* key) {
  QSettings settings;
  settings.setValue(QLatin1String(key), sender.isChecked());
  settings.sync();
}

}  // namespace

ViewController::ViewController(AppDelegate* appDelegate)
    : logFont(makeLogFont()),
      appDelegate_(appDelegate),
      openPanelFolder_(QDir::homePath()),
      mainQueue_([this] { showChanges(); }),
      driver_(*this, mainQueue_) {}

void ViewController::viewDidLoad() {
  dropView->delegate = this;
  // The text colour stays the palette's, so that it follows the theme.
  logView->setFont(logFont);
  restoreCheckboxState(*subfolderCheckbox, subfolderKey);
  restoreCheckboxState(*overwriteCheckbox, overwriteKey);
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

QWidget* ViewController::window() const {
  return dropView->window();
}

BatchOptions ViewController::options() const {
  return {.useSubfolder = subfolderCheckbox->isChecked(),
          .overwrite = overwriteCheckbox->isChecked()};
}

void ViewController::runStarted() {
  logView->startRun();
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
  if (entry.lines.size() > 1) ++filesWithWarnings_;
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
  announceRun();
  logView->showAppended();
  if (!changes.counts) return;
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

void ViewController::announceRun() {
  announcer_.update(*window(), {.isRunning = driver_.totalFiles() > 0,
                                .progress = progressIndicator->value() / double{progressSteps},
                                .status = statusLabel->text(),
                                .failed = driver_.failedFiles(),
                                .withWarnings = filesWithWarnings_});
}

void ViewController::subfolderChanged() {
  storeCheckboxState(*subfolderCheckbox, subfolderKey);
}

void ViewController::overwriteChanged() {
  storeCheckboxState(*overwriteCheckbox, overwriteKey);
}

void ViewController::openDocument() {
  showOpenPanel();
}

void ViewController::mnuCheckForUpdates() {
  checkForUpdates(mainBundleInfo());
}

}  // namespace corvana
