#include "app/log_view.hpp"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QFileDialog>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QSaveFile>
#include <QScrollBar>
#include <QStyle>
#include <QTextBlock>
#include <QToolTip>
#include <algorithm>
#include <iterator>
#include <utility>

#include "app/file_manager.hpp"
#include "app/isolates.hpp"
#include "app/log_layout.hpp"
#include "app/qt_values.hpp"
#include "app/quiet_colour.hpp"
#include "platform/texts.hpp"
#include "vocabulary/text_format.hpp"

namespace corvana {
namespace {

constexpr int minZoom = -5;
constexpr int maxZoom = 25;

/// A text of the document, whose lines have another separator.
QString exactText(QString text) {
  return withoutIsolates(text.replace(QChar::ParagraphSeparator, QLatin1Char('\n')));
}

/// A path for a tool tip, which may break after every folder.
QString toolTipLine(const std::string& path) {
  return QStringLiteral("<p dir=\"ltr\" style=\"margin:0\">%1</p>")
      .arg(screenLine(path).toHtmlEscaped().replace(QLatin1Char('/'), QStringLiteral("/\u200B")));
}

}  // namespace

LogView::LogView(QWidget* parent) : QPlainTextEdit(parent) {
  auto* log = new QTextDocument(this);
  log->setUndoRedoEnabled(false);
  log->setDocumentLayout(new LogLayout(log));
  setDocument(log);
  followInterfaceDirection();
  setReadOnly(true);
  setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  setTabChangesFocus(true);
  const auto tell = [this] {
    const auto [first, last] = chosenEntries();
    emit filesChosen(
        std::count_if(first, last, [](const Entry& entry) { return entry.hasFile(); }));
  };
  connect(this, &QPlainTextEdit::selectionChanged, this, tell);
  connect(this, &QPlainTextEdit::cursorPositionChanged, this, tell);
}

void LogView::startRun() {
  counts_ = {};
  problems_.clear();
}

void LogView::append(const LogEntry& entry) {
  const bool failed = entry.outcome == Outcome::failed;
  const bool hasWarnings = entry.outcome == Outcome::converted && entry.lines.size() > 1;
  if (failed) ++counts_.failed;
  if (entry.outcome == Outcome::converted) ++counts_.converted;
  if (hasWarnings) ++counts_.withWarnings;
  if (failed || hasWarnings) problems_.push_back(std::ssize(entries_));
  const std::string& input = entry.input;
  const std::string& output = entry.output;
  const auto differ = std::mismatch(input.begin(), input.end(), output.begin(), output.end());
  entries_.push_back({lines_, static_cast<std::uint32_t>(input.size()),
                      static_cast<std::uint32_t>(differ.first - input.begin()),
                      static_cast<std::uint32_t>(output.size()), paths_.size()});
  paths_ += input;
  paths_.append(differ.second, output.end());
  lines_ += static_cast<int>(entry.lines.size());
  appended_ += isolatedText(entry, layoutDirection()) + QLatin1Char('\n');
}

void LogView::showAppended() {
  if (appended_.isEmpty()) return;
  QString text = std::exchange(appended_, {});
  // The document takes these for its own marks, at which a line ends.
  for (const char16_t mark : {u'\uFDD0', u'\uFDD1'})
    text.replace(QChar(mark), QChar(QChar::ReplacementCharacter));
  const int anchor = textCursor().anchor();
  const int position = textCursor().position();
  QTextCursor end(document());
  end.movePosition(QTextCursor::End);
  end.insertText(text);
  // What reached to the end grows with it.
  if (QTextCursor chosen = textCursor();
      chosen.anchor() != anchor || chosen.position() != position) {
    chosen.setPosition(anchor);
    chosen.setPosition(position, QTextCursor::KeepAnchor);
    setTextCursor(chosen);
  }
  scrollToEnd();
}

QString LogView::text() const {
  return exactText(document()->toRawText());
}

std::vector<std::filesystem::path> LogView::chosenFiles() const {
  std::vector<std::filesystem::path> files;
  const auto [first, last] = chosenEntries();
  for (auto entry = first; entry != last; ++entry)
    if (entry->hasFile())
      files.emplace_back(entry->hasOutput() ? outputOf(*entry) : inputOf(*entry));
  return files;
}

void LogView::showNextProblem() {
  showProblem(true);
}

void LogView::showPreviousProblem() {
  showProblem(false);
}

void LogView::showInFileManager() {
  if (const auto files = chosenFiles(); !files.empty() && std::ssize(files) <= maxShownFiles)
    corvana::showInFileManager(files);
}

void LogView::copyPaths() {
  QStringList paths;
  for (const std::filesystem::path& file : chosenFiles())
    paths << qtText(file.native());
  if (!paths.isEmpty()) QGuiApplication::clipboard()->setText(paths.join(QLatin1Char('\n')));
}

void LogView::saveAs() {
  auto* panel = new QFileDialog(this, qtText(localised("Save Log")));
  panel->setAttribute(Qt::WA_DeleteOnClose);
  panel->setAcceptMode(QFileDialog::AcceptSave);
  panel->setDefaultSuffix(QStringLiteral("txt"));
  panel->selectFile(QStringLiteral("Corvana.txt"));
  connect(panel, &QFileDialog::fileSelected, this, &LogView::saveTo);
  panel->open();  // modal to its window only
}

void LogView::saveTo(const QString& path) {
  QSaveFile file(path);
  const QByteArray bytes = text().toUtf8();
  if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit()) return;
  auto* failure =
      new QMessageBox(QMessageBox::Warning, qtText(localised("Save Log")),
                      screenLine(fillText(localised("Writing failed: %@"), {path.toStdString()})),
                      QMessageBox::Ok, this);
  failure->setAttribute(Qt::WA_DeleteOnClose);
  failure->setTextFormat(Qt::PlainText);
  failure->setInformativeText(file.errorString());
  failure->open();
}

void LogView::zoomBy(int steps) {
  const int zoom = std::clamp(zoom_ + steps, minZoom, maxZoom);
  const bool wasAtEnd = isAtEnd();
  QFont zoomed = font();
  zoomed.setPointSize(zoomed.pointSize() + zoom - std::exchange(zoom_, zoom));
  setFont(zoomed);
  if (wasAtEnd) scrollToEnd();
}

void LogView::resetZoom() {
  zoomBy(-zoom_);
}

void LogView::changeEvent(QEvent* event) {
  QPlainTextEdit::changeEvent(event);
  if (event->type() == QEvent::LayoutDirectionChange) followInterfaceDirection();
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ParentChange)
    followTheme();
}

void LogView::contextMenuEvent(QContextMenuEvent* event) {
  if (event->reason() == QContextMenuEvent::Mouse) {
    const QTextCursor clicked = cursorForPosition(event->pos());
    const QTextCursor chosen = textCursor();
    const bool isChosen = chosen.selectionStart() <= clicked.position() &&
                          clicked.position() <= chosen.selectionEnd();
    if (!isChosen) setTextCursor(clicked);
  }
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  menu->addActions(actions());
  menu->popup(event->globalPos());
}

QMimeData* LogView::createMimeDataFromSelection() const {
  auto* content = new QMimeData;
  content->setText(exactText(textCursor().selectedText()));
  if (!drags_) return content;
  QList<QUrl> urls;
  const auto [first, last] = chosenEntries();
  for (auto entry = first; entry != last; ++entry)
    if (entry->hasOutput()) urls << QUrl(urlTextOfPath(outputOf(*entry)));
  if (!urls.isEmpty()) content->setUrls(urls);
  return content;
}

void LogView::mouseMoveEvent(QMouseEvent* event) {
  // A drag begins and ends in here.
  drags_ = true;
  QPlainTextEdit::mouseMoveEvent(event);
  drags_ = false;
}

void LogView::resizeEvent(QResizeEvent* event) {
  const bool wasAtEnd = isAtEnd();
  QPlainTextEdit::resizeEvent(event);
  if (wasAtEnd) scrollToEnd();
}

bool LogView::viewportEvent(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QPlainTextEdit::viewportEvent(event);
  const auto* help = static_cast<QHelpEvent*>(event);
  QToolTip::showText(help->globalPos(), toolTipAt(help->pos()), viewport());
  return true;
}

void LogView::wheelEvent(QWheelEvent* event) {
  if ((event->modifiers() & Qt::ControlModifier) == 0) return QPlainTextEdit::wheelEvent(event);
  if (const int turned = event->angleDelta().y(); turned != 0) zoomBy(turned > 0 ? 1 : -1);
  event->accept();
}

std::string LogView::inputOf(const Entry& entry) const {
  return paths_.substr(entry.paths, entry.inputLength);
}

std::string LogView::outputOf(const Entry& entry) const {
  return paths_.substr(entry.paths, entry.commonLength) +
         paths_.substr(entry.paths + entry.inputLength, entry.outputLength - entry.commonLength);
}

LogView::Entries::const_iterator LogView::entryOfLine(int line) const {
  const int shown = document()->blockCount() - 1;
  if (line >= shown) return entries_.end();
  const auto next =
      std::upper_bound(entries_.begin(), entries_.end(), line,
                       [](int number, const Entry& entry) { return number < entry.firstLine; });
  return next == entries_.begin() ? entries_.end() : std::prev(next);
}

std::pair<LogView::Entries::const_iterator, LogView::Entries::const_iterator>
LogView::chosenEntries() const {
  const QTextCursor cursor = textCursor();
  // A selection of whole lines ends at the start of the next one.
  const int end = cursor.hasSelection() ? cursor.selectionEnd() - 1 : cursor.position();
  const auto first = entryOfLine(document()->findBlock(cursor.selectionStart()).blockNumber());
  const auto last = entryOfLine(document()->findBlock(end).blockNumber());
  return {first, last == entries_.end() ? last : std::next(last)};
}

void LogView::showProblem(bool forward) {
  if (problems_.empty()) return;
  const auto [first, last] = chosenEntries();
  // Before anybody has looked for an entry the cursor stands in the first one.
  const auto from = forward && textCursor().hasSelection() ? last : first;
  const auto next =
      std::lower_bound(problems_.begin(), problems_.end(), std::distance(entries_.cbegin(), from));
  const auto problem = forward ? (next == problems_.end() ? problems_.begin() : next)
                               : std::prev(next == problems_.begin() ? problems_.end() : next);
  showEntry(entries_.begin() + *problem);
}

void LogView::showEntry(Entries::const_iterator entry) {
  const auto next = std::next(entry);
  const int end = next == entries_.end() ? lines_ : next->firstLine;
  QTextCursor cursor(document()->findBlockByNumber(end - 1));
  cursor.movePosition(QTextCursor::EndOfBlock);
  setTextCursor(cursor);
  ensureCursorVisible();
  cursor.setPosition(document()->findBlockByNumber(entry->firstLine).position(),
                     QTextCursor::KeepAnchor);
  setTextCursor(cursor);
  ensureCursorVisible();
}

QString LogView::toolTipAt(const QPoint& position) const {
  const auto entry = entryOfLine(cursorForPosition(position).blockNumber());
  if (entry == entries_.end() || !entry->hasFile()) return {};
  QString tip = toolTipLine(inputOf(*entry));
  if (entry->hasOutput()) tip += toolTipLine("=> " + outputOf(*entry));
  return tip;
}

void LogView::followInterfaceDirection() {
  // A name in a script of the other direction does not turn its entry around.
  QTextOption option = document()->defaultTextOption();
  option.setTextDirection(layoutDirection());
  option.setAlignment(QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft));
  document()->setDefaultTextOption(option);
}

void LogView::followTheme() {
  const QPalette theme = parentWidget() ? parentWidget()->palette() : QApplication::palette(this);
  const QColor quiet =
      quietColour(theme, QPalette::Text, {theme.color(QPalette::Active, QPalette::Base)});
  if (palette().color(QPalette::PlaceholderText) == quiet) return;
  QPalette ours;
  ours.setColor(QPalette::PlaceholderText, quiet);
  setPalette(ours);
}

bool LogView::isAtEnd() const {
  return verticalScrollBar()->value() == verticalScrollBar()->maximum();
}

void LogView::scrollToEnd() {
  QScrollBar& bar = *verticalScrollBar();
  // Lines that come into sight may need more room than was thought.
  while (bar.value() != bar.maximum())
    bar.setValue(bar.maximum());
}

}  // namespace corvana
