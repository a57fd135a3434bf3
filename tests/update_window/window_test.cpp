#include <QAccessible>
#include <QDesktopServices>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTest>
#include <gtest/gtest.h>

#include "platform/texts.hpp"
#include "update_window/https_server.hpp"
#include "update_window/spinning_wheel.hpp"
#include "update_window/vantor_window_controller.hpp"
#include "update_window/web_address.hpp"

namespace corvana::test {
namespace {

const std::string loading =
    "Please wait a moment.|||Please wait a moment. Information on any available updates is "
    "currently being downloaded...\n\nYou need an active internet connection for this to "
    "work.|Close|off|off|spinning";
const std::string unavailable =
    "There is currently no newer version or the service is not available.|||"
    "There is currently no newer version or the service is not available.\n"
    "You need an active internet connection for this to work.|Close*|off|off";
const std::string latest =
    "You are using the latest version 1.0.|||You are using the latest version 1.0.\n"
    "Thanks for checking, but unfortunately there is no newer version yet.\n"
    "If you encounter any problems with the current version, please send me an email with some "
    "details.|Close*|";
const std::string newer =
    "A new version of Corvana is available!|"
    "Corvana 1.1 is now available - you have 1.0. Would you like to download it now?|"
    "Release Notes:|";
const QString website = "https://www.corvana.example/";
const QString download = "https://www.corvana.example/d.zip";

VantorErgebnis newVersion() {
  return {.neueVersionVorhanden = true,
          .warDasEineGueltigeDatei = true,
          .newAppVersion = u"1.1",
          .newReleaseNotes = u"Notes.\n",
          .newDownloadURL = u" " + download.toStdU16String() + u"\n",
          .newWebsiteForProgram = website.toStdU16String() + u" "};
}

VantorErgebnis upToDate() {
  VantorErgebnis ergebnis;
  ergebnis.warDasEineGueltigeDatei = true;
  ergebnis.newWebsiteForProgram = website.toStdU16String();
  return ergebnis;
}

/// Takes the addresses that the program wants to open.
class Browser : public QObject {
  Q_OBJECT
 public:
  Browser() {
    for (const char* scheme : schemes)
      QDesktopServices::setUrlHandler(scheme, this, "open");
  }
  ~Browser() override {
    for (const char* scheme : schemes)
      QDesktopServices::unsetUrlHandler(scheme);
  }
  Q_INVOKABLE void open(const QUrl& url) { opened.append(url.toString()); }

  QStringList opened;

 private:
  static constexpr const char* schemes[] = {"http", "https", "file", "javascript"};
};

class UpdateWindow : public testing::Test {
 protected:
  QPlainTextEdit* notes() { return controller_.findChild<QPlainTextEdit*>(); }
  QPushButton* button(const char* name) { return controller_.findChild<QPushButton*>(name); }
  QPushButton* later() { return button("btnAskMeLater"); }
  QPushButton* toWebsite() { return button("btnGotoProductWebsite"); }
  QPushButton* toDownload() { return button("btnDownloadUpdate"); }
  bool isSpinning() { return !controller_.findChild<SpinningWheel*>()->isHidden(); }

  /// All that the window shows; an asterisk marks the button that Return presses.
  std::string shown() {
    QString all;
    for (const char* name : {"lblInfoBoldLine", "lblInfoWithVersionNumbers", "lblReleaseNotes"})
      all += controller_.findChild<QLabel*>(name)->text() + '|';
    all += notes()->toPlainText() + '|' + later()->text() + (later()->isDefault() ? "*" : "");
    for (const QPushButton* offer : {toWebsite(), toDownload()})
      all +=
          (offer->isEnabled() ? "|" : "|off") + offer->toolTip() + (offer->isDefault() ? "*" : "");
    return (all + (isSpinning() ? "|spinning" : "")).toStdString();
  }

  /// The loading state of a check that has not got its answer.
  void startUnanswered() { controller_.startUpdateCheck("Corvana", "1.0", "https://127.0.0.1:1/"); }
  /// The state after the answer to the first check.
  std::string shownFor(const VantorErgebnis& ergebnis, int status = 200) {
    startUnanswered();
    controller_.receiveResult(1, ergebnis, status);
    return shown();
  }

  Browser browser_;
  VantorWindowController controller_;
};

TEST_F(UpdateWindow, AsksOnlyWithUsableArguments) {
  const auto check = [&](const char* name, const char* version, const char* address) {
    controller_.startUpdateCheck(name, version, address);
    return controller_.isVisible() ? shown() : "nothing";
  };
  EXPECT_EQ(check(" ", "1", "https://x/"), "nothing");
  EXPECT_EQ(check("Corvana", "\n", "https://x/"), "nothing");
  EXPECT_EQ(check("Corvana", "1", "https:x"), "nothing");
  EXPECT_EQ(check("Corvana", "beta", "https://127.0.0.1/"), unavailable);
  EXPECT_EQ(check("Corvana", "-1.0", "https://127.0.0.1/"), unavailable);
  EXPECT_EQ(check("Corvana", "1.0", "http://127.0.0.1/"), unavailable);
}

TEST_F(UpdateWindow, ShowsANewVersion) {
  EXPECT_EQ(shownFor(newVersion(), 404),
            newer +
                "Notes.\n\n\nProduct Website: https://www.corvana.example/\n"
                "Download URL: https://www.corvana.example/d.zip\n|Ask Me Later|"
                "Visit https://www.corvana.example/|Download https://www.corvana.example/d.zip*");
  toWebsite()->click();
  QTest::keyClick(notes(), Qt::Key_Return);
  EXPECT_EQ(browser_.opened, QStringList({website, download}));
  EXPECT_TRUE(controller_.isVisible());
  EXPECT_EQ(toDownload()->geometry(), QRect(444, 264, 156, 32)) << "the right one at the bottom";
  later()->click();
  EXPECT_FALSE(controller_.isVisible());
}

TEST_F(UpdateWindow, OffersOnlyAddressesThatItHas) {
  VantorErgebnis bare = newVersion();
  bare.newDownloadURL = u" \n";
  bare.newWebsiteForProgram = u"";
  EXPECT_EQ(shownFor(bare), newer + "Notes.\n\n\n|Ask Me Later|off|off");
  QTest::keyClick(&controller_, Qt::Key_Return);
  EXPECT_TRUE(controller_.isVisible());
}

TEST_F(UpdateWindow, ShowsThatTheVersionIsUpToDate) {
  EXPECT_EQ(shownFor(upToDate()), latest + "Visit https://www.corvana.example/|off");
  toWebsite()->click();
  EXPECT_EQ(browser_.opened, QStringList(website));
  QTest::keyClick(&controller_, Qt::Key_Return);
  EXPECT_FALSE(controller_.isVisible());
}

TEST_F(UpdateWindow, EveryStateLeadsBackToLoading) {
  const QPoint centre = controller_.screen()->availableGeometry().center();
  std::int64_t number = 0;
  for (const auto& [ergebnis, status] : {std::pair(newVersion(), 200),
                                         {upToDate(), 200},
                                         {VantorErgebnis(), 200},
                                         {upToDate(), 404}}) {
    startUnanswered();
    controller_.receiveResult(++number, ergebnis, status);
    EXPECT_EQ(shown() == unavailable, number > 3);
    controller_.move(3, 4);
    startUnanswered();
    ++number;
    EXPECT_EQ(shown(), loading);
    EXPECT_LE((controller_.frameGeometry().center() - centre).manhattanLength(), 20);
    toWebsite()->click();
    EXPECT_EQ(browser_.opened, QStringList());
  }
}

TEST_F(UpdateWindow, DropsStaleAnswers) {
  startUnanswered();
  startUnanswered();
  controller_.receiveResult(1, newVersion(), 200);
  EXPECT_EQ(shown(), loading);
  QTest::keyClick(&controller_, Qt::Key_Escape);
  EXPECT_FALSE(isSpinning());
  controller_.receiveResult(2, newVersion(), 200);
  EXPECT_FALSE(controller_.isVisible());
  startUnanswered();
  EXPECT_EQ(shown(), loading);
}

TEST_F(UpdateWindow, ShowsLongAndForeignTextAsItIs) {
  VantorErgebnis ergebnis = newVersion();
  ergebnis.newReleaseNotes.append(100, u'\n');
  ergebnis.newAppVersion = u"<h1>1.1</h1>";
  ergebnis.newWebsiteForProgram = u"<img src='file:///x'>";
  shownFor(ergebnis);
  for (const QLabel* label : controller_.findChildren<QLabel*>())
    EXPECT_TRUE(label->text().isEmpty() || label->textFormat() == Qt::PlainText);
  EXPECT_EQ(toWebsite()->toolTip(), "<qt>Visit &lt;img src='file:///x'&gt;</qt>");
  toWebsite()->click();
  EXPECT_EQ(browser_.opened, QStringList());
  EXPECT_GT(notes()->verticalScrollBar()->maximum(), 50);
  EXPECT_EQ(notes()->verticalScrollBar()->value(), 0);
}

TEST(OpenURLString, OpensWebAddressesOnly) {
  Browser browser;
  for (const char* text : {"", "www.corvana.example", "https:///x", "https://a b/", "/usr/bin/true",
                           "file:///etc/passwd", "javascript:alert(1)"})
    openURLString(text);
  EXPECT_EQ(browser.opened, QStringList());
  openURLString(" HTTPS://x.example/a?b#c\n");
  openURLString("http://x.example");
  EXPECT_EQ(browser.opened, QStringList({"https://x.example/a?b#c", "http://x.example"}));
}

TEST_F(UpdateWindow, AsksTheServerAndGivesUpAtASecondCheckOrWhenClosed) {
  const auto check = [&](const HttpsServer& server) {
    controller_.startUpdateCheck(" Corvana ", "1.0\n", server.address());
  };
  const HttpsServer silent([](auto&) { return QByteArray(); });
  const auto waitFor = [&](int requests, int hungUp) {
    return QTest::qWaitFor(
        [&] { return silent.requests.size() == requests && silent.hungUp == hungUp; }, 20000);
  };
  check(silent);
  EXPECT_TRUE(waitFor(1, 0));
  check(silent);
  EXPECT_TRUE(waitFor(2, 1));
  EXPECT_EQ(shown(), loading);
  controller_.close();
  EXPECT_TRUE(waitFor(2, 2));
  EXPECT_FALSE(controller_.isVisible());
  const HttpsServer server(
      [](auto&) { return httpAnswer(scrambled(u"$APP$:Corvana$VERMAC$ 1.0$")); });
  check(server);
  check(server);
  EXPECT_TRUE(QTest::qWaitFor([&] { return !isSpinning(); }, 30000));
  EXPECT_EQ(shown(), latest + "off|off");
}

/// The texts of all states in `language`, each with a name for screen readers. None may be cut off
/// in its fixed frame.
QStringList wholeTexts(const char* language, bool isUsualSize = true) {
  qputenv("LC_ALL", "C.UTF-8");
  qputenv("LANGUAGE", language);
  useSystemLanguage(CORVANA_PROGRAM_FOLDER);
  VantorWindowController window;
  window.startUpdateCheck("Corvana", "1.10.12", "https://127.0.0.1:1/");
  EXPECT_EQ(window.findChild<QLabel*>("lblInfoBoldLine")->font().pixelSize() > 15,
            QApplication::font().pointSize() > 10);
  QStringList texts = {window.windowTitle()};
  const auto* area = window.findChild<QPlainTextEdit*>();
  const auto collect = [&] {
    for (auto* control : window.findChildren<QWidget*>()) {
      const QString text = control->property("text").toString();
      const int flags = control->property("wordWrap").toBool() ? Qt::TextWordWrap : 0;
      const QSize needed = control->fontMetrics().boundingRect(control->rect(), flags, text).size();
      EXPECT_TRUE(text.isEmpty() || (needed.boundedTo(control->size()) == needed &&
                                     (!isUsualSize || control->font().pixelSize() >= 10)))
          << text.toStdString();
      EXPECT_FALSE(text.isEmpty() && control->inherits("QPushButton"));
      const QString name = QAccessible::queryAccessibleInterface(control)->text(QAccessible::Name);
      EXPECT_EQ(name.isEmpty(), text.isEmpty() && control != area) << text.toStdString();
      texts += {text, control->toolTip()};
    }
    EXPECT_TRUE(!isUsualSize || area->verticalScrollBar()->maximum() == 0);
    texts += area->toPlainText().split('\n');
  };
  collect();
  for (const VantorErgebnis& ergebnis : {newVersion(), upToDate(), VantorErgebnis()}) {
    window.showLoadingState();
    window.showResult(ergebnis, 200);
    collect();
  }
  return texts;
}

TEST(UpdateWindowTexts, AreWholeInEverySizeAndTranslated) {
  const QFont usual = QApplication::font();
  for (const int points : {8, 20}) {
    QFont font = usual;
    font.setPointSize(points);
    QApplication::setFont(font);
    wholeTexts("en", false);
  }
  QApplication::setFont(usual);
  const QStringList german = wholeTexts("de");
  const QStringList english = wholeTexts("en");
  ASSERT_EQ(english.size(), german.size());
  for (int i = 0; i < english.size(); ++i)
    EXPECT_TRUE(english[i] != german[i] || english[i].isEmpty() || english[i] == "Notes.")
        << english[i].toStdString();
}

}  // namespace
}  // namespace corvana::test

#include "window_test.moc"
