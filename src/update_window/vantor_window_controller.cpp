#include "update_window/vantor_window_controller.hpp"

#include <QApplication>
#include <QCloseEvent>
#include <QFontInfo>
#include <QIcon>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <algorithm>
#include <string>

#include "platform/texts.hpp"
#include "update/result_texts.hpp"
#include "update/text_search.hpp"
#include "update/version_number.hpp"
#include "update_window/fetch_version_file.hpp"
#include "update_window/news_label.hpp"
#include "update_window/spinning_wheel.hpp"
#include "update_window/web_address.hpp"
#include "vocabulary/text_format.hpp"
#include "vocabulary/unicode.hpp"

namespace corvana {
namespace {

constexpr int windowWidth = 620;
constexpr int windowHeight = 310;
constexpr int minTextSize = 8;
// Of the user's text size.
constexpr double headlineScale = 14.0 / 12.0;
constexpr double textScale = 1.0;
constexpr int iconSize = 64;

QString vantor(const char* key) {
  return QString::fromStdString(localised(key, TextTable::vantor));
}

/// The frame's `y` counts from the bottom of the window to the bottom of the control.
void place(QWidget& control, int x, int y, int width, int height) {
  control.setGeometry(x, windowHeight - y - height, width, height);
}

/// Whether the text of a label or button is to be seen whole.
bool showsWholeText(const QWidget& control) {
  if (control.hasHeightForWidth())
    return control.heightForWidth(control.width()) <= control.height();
  return control.sizeHint().boundedTo(control.size()) == control.sizeHint();
}

/// In the user's text size. The frames are fixed, fonts and languages are not: where the text
/// needs it, the letters become smaller.
template <typename Control>
void showText(Control& control, double scale, const QString& text) {
  QFont font = control.font();
  control.setText(text);
  const int wantedSize = qRound(QFontInfo(QApplication::font()).pixelSize() * scale);
  for (int size = std::max(wantedSize, minTextSize); size >= minTextSize; --size) {
    font.setPixelSize(size);
    control.setFont(font);
    if (showsWholeText(control)) return;
  }
  if (!control.hasHeightForWidth())
    control.setText(control.fontMetrics().elidedText(text, Qt::ElideRight, control.width()));
}

template <typename Label>
Label* makeLabel(QWidget* parent, bool wraps, QFont::Weight weight) {
  auto* label = new Label(parent);
  QFont font;
  font.setWeight(weight);
  label->setFont(font);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(wraps);
  label->setAlignment(wraps ? Qt::AlignLeft | Qt::AlignTop : Qt::AlignLeft | Qt::AlignVCenter);
  return label;
}

/// Dialog buttons take the Return key by themselves unless told otherwise.
QPushButton* makeButton(QWidget* parent) {
  auto* button = new QPushButton(parent);
  button->setAutoDefault(false);
  return button;
}

/// A tool tip that reads like markup would be shown as such.
QString plainToolTip(const QString& text) {
  return Qt::mightBeRichText(text) ? QStringLiteral("<qt>%1</qt>").arg(text.toHtmlEscaped()) : text;
}

/// Enabled, with the address in its tool tip, where there is an address.
void offer(QPushButton& button, const char* toolTip, const std::u16string& address) {
  button.setEnabled(!address.empty());
  if (address.empty()) return;
  button.setToolTip(plainToolTip(QString::fromStdString(
      fillText(localised(toolTip, TextTable::vantor), {shownAddress(address)}))));
}

}  // namespace

VantorWindowController::VantorWindowController()
    : imgAppIcon(new QLabel(this)),
      lblInfoBoldLine(makeLabel<NewsLabel>(this, false, QFont::Bold)),
      lblInfoWithVersionNumbers(makeLabel<QLabel>(this, true, QFont::Normal)),
      lblReleaseNotes(makeLabel<QLabel>(this, false, QFont::Bold)),
      scrollReleaseNotes(nullptr),
      txtDisplayReleaseNotes(new QPlainTextEdit(this)),
      progressWheel1(new SpinningWheel(this)),
      btnAskMeLater(makeButton(this)),
      btnGotoProductWebsite(makeButton(this)),
      btnDownloadUpdate(makeButton(this)) {
  scrollReleaseNotes = txtDisplayReleaseNotes;
  imgAppIcon->setObjectName(QStringLiteral("imgAppIcon"));
  lblInfoBoldLine->setObjectName(QStringLiteral("lblInfoBoldLine"));
  lblInfoWithVersionNumbers->setObjectName(QStringLiteral("lblInfoWithVersionNumbers"));
  lblReleaseNotes->setObjectName(QStringLiteral("lblReleaseNotes"));
  txtDisplayReleaseNotes->setObjectName(QStringLiteral("txtDisplayReleaseNotes"));
  progressWheel1->setObjectName(QStringLiteral("progressWheel1"));
  btnAskMeLater->setObjectName(QStringLiteral("btnAskMeLater"));
  btnGotoProductWebsite->setObjectName(QStringLiteral("btnGotoProductWebsite"));
  btnDownloadUpdate->setObjectName(QStringLiteral("btnDownloadUpdate"));

  setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                 Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint);
  setWindowTitle(vantor("Software Update"));
  setFixedSize(windowWidth, windowHeight);
  layoutControls();

  connect(btnAskMeLater, &QPushButton::clicked, this,
          &VantorWindowController::btnAskMeLaterPressed);
  connect(btnGotoProductWebsite, &QPushButton::clicked, this,
          &VantorWindowController::btnGotoProductWebsitePressed);
  connect(btnDownloadUpdate, &QPushButton::clicked, this,
          &VantorWindowController::btnDownloadUpdatePressed);
}

VantorWindowController& VantorWindowController::sharedController() {
  static auto* const controller = new VantorWindowController;
  return *controller;
}

void VantorWindowController::layoutControls() {
  place(*imgAppIcon, 20, 226, iconSize, iconSize);
  place(*lblInfoBoldLine, 110, 266, 490, 22);
  place(*lblInfoWithVersionNumbers, 110, 230, 490, 32);
  place(*lblReleaseNotes, 110, 205, 490, 18);
  place(*scrollReleaseNotes, 110, 58, 490, 142);
  place(*progressWheel1, 36, 66, 32, 32);
  place(*btnAskMeLater, 110, 14, 156, 32);
  place(*btnGotoProductWebsite, 277, 14, 156, 32);
  place(*btnDownloadUpdate, 444, 14, 156, 32);

  imgAppIcon->setPixmap(QApplication::windowIcon().pixmap(iconSize));
  imgAppIcon->setAlignment(Qt::AlignCenter);

  scrollReleaseNotes->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
  scrollReleaseNotes->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  scrollReleaseNotes->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  txtDisplayReleaseNotes->setReadOnly(true);
  txtDisplayReleaseNotes->setTextInteractionFlags(Qt::TextSelectableByMouse |
                                                  Qt::TextSelectableByKeyboard);
  txtDisplayReleaseNotes->setTabChangesFocus(true);
  txtDisplayReleaseNotes->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  txtDisplayReleaseNotes->document()->setDocumentMargin(4);
  txtDisplayReleaseNotes->setAccessibleName(windowTitle());
}

void VantorWindowController::startUpdateCheck(const QString& applicationName,
                                              const QString& installedVersion,
                                              const QString& address) {
  const QString name = applicationName.trimmed();
  const QString version = installedVersion.trimmed();
  const QString url = address.trimmed();
  if (name.isEmpty() || version.isEmpty() || !url.contains(QLatin1Char('/'))) return;
  strInternalAppName = name;
  strInternalAppVersion = version;
  strInternalDownloadURL = url;
  showLoadingState();

  QRect frame = frameGeometry();
  frame.moveCenter(screen()->availableGeometry().center());
  move(frame.topLeft());
  show();
  raise();
  activateWindow();

  if (laufenderTask) laufenderTask->cancel();
  ++anfrageNummer;
  fetch();
}

void VantorWindowController::fetch() {
  const std::u16string version = strInternalAppVersion.toStdU16String();
  const auto url = webAddress(strInternalDownloadURL);
  if (versionNumber(version) < 1 || !url || url->scheme() != QLatin1String("https")) {
    showResult(VantorErgebnis(), 0);
    return;
  }
  laufenderTask =
      fetchVersionFile(*url, strInternalAppName.toStdU16String(), version, anfrageNummer, this,
                       [this](std::int64_t number, const VantorErgebnis& result, int status) {
                         receiveResult(number, result, status);
                       });
}

void VantorWindowController::receiveResult(std::int64_t requestNumber, const VantorErgebnis& result,
                                           int status) {
  if (requestNumber != anfrageNummer) return;
  laufenderTask = nullptr;
  showResult(result, status);
}

void VantorWindowController::showLoadingState() {
  ergebnis = VantorErgebnis();
  showText(*lblInfoBoldLine, headlineScale, vantor("Please wait a moment."));
  lblInfoWithVersionNumbers->clear();
  lblReleaseNotes->clear();
  txtDisplayReleaseNotes->setPlainText(
      vantor("Please wait a moment. Information on any available updates is currently being "
             "downloaded...") +
      QStringLiteral("\n\n") + vantor("You need an active internet connection for this to work."));
  showText(*btnAskMeLater, textScale, vantor("Close"));
  showText(*btnGotoProductWebsite, textScale, vantor("Visit Product Website"));
  showText(*btnDownloadUpdate, textScale, vantor("Download Update"));
  btnAskMeLater->setDefault(false);
  for (QPushButton* button : {btnGotoProductWebsite, btnDownloadUpdate}) {
    button->setEnabled(false);
    button->setToolTip(QString());
  }
  btnDownloadUpdate->setDefault(false);
  progressWheel1->startAnimation();
}

void VantorWindowController::showResult(const VantorErgebnis& result, int status) {
  ergebnis = result;
  ergebnis.newWebsiteForProgram = trimmed(ergebnis.newWebsiteForProgram);
  ergebnis.newDownloadURL = trimmed(ergebnis.newDownloadURL);
  const ResultTexts texts = resultTexts(ergebnis, status, strInternalAppName.toStdU16String(),
                                        strInternalAppVersion.toStdU16String());
  showText(*lblInfoBoldLine, headlineScale, QString::fromStdString(texts.headline));
  showText(*lblInfoWithVersionNumbers, textScale, QString::fromStdString(texts.versionLine));
  showText(*lblReleaseNotes, textScale, QString::fromStdString(texts.caption));
  txtDisplayReleaseNotes->setPlainText(QString::fromStdString(texts.text));

  const ResultState state = resultState(ergebnis, status);
  if (state != ResultState::unavailable)
    offer(*btnGotoProductWebsite, translatable("Visit %@"), ergebnis.newWebsiteForProgram);
  if (state == ResultState::newVersion) {
    offer(*btnDownloadUpdate, translatable("Download %@"), ergebnis.newDownloadURL);
    btnDownloadUpdate->setDefault(btnDownloadUpdate->isEnabled());
    showText(*btnAskMeLater, textScale, vantor("Ask Me Later"));
  } else {
    btnAskMeLater->setDefault(true);
  }
  txtDisplayReleaseNotes->verticalScrollBar()->setValue(0);
  progressWheel1->stopAnimation();
  lblInfoBoldLine->setAccessibleDescription(lblInfoWithVersionNumbers->text());
  lblInfoBoldLine->announce();
}

void VantorWindowController::btnAskMeLaterPressed() {
  close();
}

void VantorWindowController::btnGotoProductWebsitePressed() {
  openURLString(QString::fromStdU16String(ergebnis.newWebsiteForProgram));
}

void VantorWindowController::btnDownloadUpdatePressed() {
  openURLString(QString::fromStdU16String(ergebnis.newDownloadURL));
}

void VantorWindowController::windowWillClose() {
  if (laufenderTask) laufenderTask->cancel();
  laufenderTask = nullptr;
  ++anfrageNummer;
  progressWheel1->stopAnimation();
}

void VantorWindowController::reject() {
  close();
}

void VantorWindowController::closeEvent(QCloseEvent* event) {
  windowWillClose();
  event->accept();
}

}  // namespace corvana
