#include <QAbstractButton>
#include <QDesktopServices>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTest>
#include <algorithm>
#include <gtest/gtest.h>
#include <memory>

#include "platform/texts.hpp"
#include "platform/unicode.hpp"
#include "update/check_for_updates.hpp"
#include "update/https_server.hpp"
#include "update/simple_encrypt_text.hpp"
#include "update/spinning_wheel.hpp"
#include "update/vantor_window_controller.hpp"
#include "update/web_address.hpp"

namespace corvana {
namespace {

using test::httpAnswer;
using test::HttpsServer;

const QString unavailableHeadline =
    "There is currently no newer version or the service is not available.";
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
  static constexpr const char* schemes[] = {"http", "https", "file", "ftp", "javascript", "mailto"};
};

class UpdateWindow : public testing::Test {
 protected:
  template <typename Control = QLabel>
  Control* find(const char* name) {
    auto* control = controller_.findChild<Control*>(name);
    EXPECT_NE(control, nullptr) << name;
    return control;
  }
  QString textOf(const char* label) { return find(label)->text(); }
  QString textArea() { return find<QPlainTextEdit>("txtDisplayReleaseNotes")->toPlainText(); }
  QPushButton* left() { return find<QPushButton>("btnAskMeLater"); }
  QPushButton* middle() { return find<QPushButton>("btnGotoProductWebsite"); }
  QPushButton* right() { return find<QPushButton>("btnDownloadUpdate"); }
  bool isSpinning() { return !find<SpinningWheel>("progressWheel1")->isHidden(); }

  /// The loading state of a check that has not got its answer, numbered 1.
  void startUnanswered() { controller_.startUpdateCheck("Corvana", "1.0", "https://127.0.0.1:1/"); }

  void expectLoading() {
    EXPECT_TRUE(controller_.isVisible());
    EXPECT_EQ(textOf("lblInfoBoldLine"), "Please wait a moment.");
    EXPECT_EQ(textOf("lblInfoWithVersionNumbers"), "");
    EXPECT_EQ(textOf("lblReleaseNotes"), "");
    EXPECT_EQ(textArea(),
              "Please wait a moment. Information on any available updates is currently being "
              "downloaded...\n\nYou need an active internet connection for this to work.");
    EXPECT_EQ(left()->text(), "Close");
    for (QPushButton* button : {left(), middle(), right()})
      EXPECT_FALSE(button->isDefault());
    for (QPushButton* button : {middle(), right()}) {
      EXPECT_FALSE(button->isEnabled());
      EXPECT_EQ(button->toolTip(), "");
    }
    EXPECT_TRUE(isSpinning());
  }

  void expectUnavailable() {
    EXPECT_TRUE(controller_.isVisible());
    EXPECT_EQ(textOf("lblInfoBoldLine"), unavailableHeadline);
    EXPECT_EQ(textOf("lblInfoWithVersionNumbers"), "");
    EXPECT_EQ(textOf("lblReleaseNotes"), "");
    EXPECT_EQ(textArea(),
              unavailableHeadline + "\nYou need an active internet connection for this to work.");
    EXPECT_EQ(left()->text(), "Close");
    EXPECT_TRUE(left()->isDefault());
    EXPECT_FALSE(middle()->isEnabled());
    EXPECT_FALSE(right()->isEnabled());
    EXPECT_FALSE(isSpinning());
  }

  Browser browser_;
  VantorWindowController controller_;
};

TEST_F(UpdateWindow, HasItsFixedFrames) {
  const struct {
    const char* name;
    QRect frame;
  } cases[] = {
      {"imgAppIcon", {20, 20, 64, 64}},
      {"lblInfoBoldLine", {110, 22, 490, 22}},
      {"lblInfoWithVersionNumbers", {110, 48, 490, 32}},
      {"lblReleaseNotes", {110, 87, 490, 18}},
      {"txtDisplayReleaseNotes", {110, 110, 490, 142}},
      {"progressWheel1", {36, 212, 32, 32}},
      {"btnAskMeLater", {110, 264, 156, 32}},
      {"btnGotoProductWebsite", {277, 264, 156, 32}},
      {"btnDownloadUpdate", {444, 264, 156, 32}},
  };
  startUnanswered();
  for (const auto& c : cases)
    EXPECT_EQ(find<QWidget>(c.name)->geometry(), c.frame) << c.name;
  EXPECT_EQ(controller_.size(), QSize(620, 310));
  EXPECT_EQ(controller_.minimumSize(), controller_.maximumSize());
  EXPECT_FALSE(controller_.windowFlags() & Qt::WindowMinimizeButtonHint);
  EXPECT_EQ(controller_.windowTitle(), "Software Update");
  EXPECT_TRUE(find<QPlainTextEdit>("txtDisplayReleaseNotes")->isReadOnly());
}

TEST_F(UpdateWindow, StartsOnlyWithCompleteArguments) {
  const struct {
    const char* name;
    const char* version;
    const char* address;
  } cases[] = {
      {" ", "1.0", "https://x/"},
      {"Corvana", "\n", "https://x/"},
      {"Corvana", "1.0", "\t"},
      {"Corvana", "1.0", "https:x"},
  };
  for (const auto& c : cases) {
    controller_.startUpdateCheck(c.name, c.version, c.address);
    EXPECT_FALSE(controller_.isVisible()) << c.name << c.version << c.address;
  }
  startUnanswered();
  controller_.receiveResult(1, upToDate(), 200);
  controller_.startUpdateCheck("Corvana", "", "https://x/");
  EXPECT_EQ(textOf("lblInfoBoldLine"), "You are using the latest version 1.0.");
}

TEST_F(UpdateWindow, WithoutARequestTheServiceIsUnavailableAtOnce) {
  const struct {
    const char* version;
    const char* address;
  } cases[] = {
      {"beta", "https://127.0.0.1/"}, {"0", "https://127.0.0.1/"},  {"-1.0", "https://127.0.0.1/"},
      {"1.0", "http://127.0.0.1/"},   {"1.0", "file:///etc/hosts"}, {"1.0", "/resources"},
      {"1.0", "https:///x"},          {"1.0", "https://a b/"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.address);
    controller_.startUpdateCheck("Corvana", c.version, c.address);
    expectUnavailable();
  }
}

TEST_F(UpdateWindow, ShowsANewVersion) {
  startUnanswered();
  expectLoading();
  controller_.receiveResult(1, newVersion(), 404);
  EXPECT_EQ(textOf("lblInfoBoldLine"), "A new version of Corvana is available!");
  EXPECT_EQ(textOf("lblInfoWithVersionNumbers"),
            "Corvana 1.1 is now available - you have 1.0. Would you like to download it now?");
  EXPECT_EQ(textOf("lblReleaseNotes"), "Release Notes:");
  EXPECT_EQ(textArea(),
            "Notes.\n\n\nProduct Website: " + website + "\nDownload URL: " + download + "\n");
  EXPECT_EQ(left()->text(), "Ask Me Later");
  EXPECT_FALSE(left()->isDefault());
  EXPECT_TRUE(middle()->isEnabled());
  EXPECT_EQ(middle()->toolTip(), "Visit " + website);
  EXPECT_TRUE(right()->isDefault());
  EXPECT_EQ(right()->toolTip(), "Download " + download);
  EXPECT_FALSE(isSpinning());

  middle()->click();
  QTest::keyClick(find<QWidget>("txtDisplayReleaseNotes"), Qt::Key_Return);
  EXPECT_EQ(browser_.opened, QStringList({website, download}));
  EXPECT_TRUE(controller_.isVisible());
  left()->click();
  EXPECT_FALSE(controller_.isVisible());
}

TEST_F(UpdateWindow, OffersOnlyAddressesThatItHas) {
  startUnanswered();
  VantorErgebnis bare = newVersion();
  bare.newDownloadURL = u" \n";
  bare.newWebsiteForProgram = u"";
  controller_.receiveResult(1, bare, 200);
  EXPECT_EQ(textArea(), "Notes.\n\n\n");
  EXPECT_FALSE(middle()->isEnabled());
  EXPECT_FALSE(right()->isEnabled());
  EXPECT_FALSE(right()->isDefault());
  QTest::keyClick(&controller_, Qt::Key_Return);
  EXPECT_TRUE(controller_.isVisible());
  EXPECT_EQ(browser_.opened, QStringList());
}

TEST_F(UpdateWindow, ShowsThatTheVersionIsUpToDate) {
  startUnanswered();
  controller_.receiveResult(1, upToDate(), 200);
  EXPECT_EQ(textOf("lblInfoBoldLine"), "You are using the latest version 1.0.");
  EXPECT_EQ(textOf("lblInfoWithVersionNumbers"), "");
  EXPECT_EQ(textOf("lblReleaseNotes"), "");
  EXPECT_EQ(textArea(),
            "You are using the latest version 1.0.\n"
            "Thanks for checking, but unfortunately there is no newer version yet.\n"
            "If you encounter any problems with the current version, please send me an email with "
            "some details.");
  EXPECT_EQ(left()->text(), "Close");
  EXPECT_EQ(middle()->toolTip(), "Visit " + website);
  EXPECT_FALSE(right()->isEnabled());
  EXPECT_FALSE(isSpinning());
  middle()->click();
  EXPECT_EQ(browser_.opened, QStringList(website));
  QTest::keyClick(&controller_, Qt::Key_Return);
  EXPECT_FALSE(controller_.isVisible());
}

TEST_F(UpdateWindow, ShowsThatTheServiceIsUnavailable) {
  const struct {
    VantorErgebnis ergebnis;
    int status;
  } cases[] = {{VantorErgebnis(), 200}, {VantorErgebnis(), 0}, {upToDate(), 404}, {upToDate(), 0}};
  std::int64_t number = 0;
  for (const auto& c : cases) {
    startUnanswered();
    controller_.receiveResult(++number, c.ergebnis, c.status);
    expectUnavailable();
  }
}

TEST_F(UpdateWindow, EveryStateLeadsBackToLoading) {
  std::int64_t number = 0;
  for (const VantorErgebnis& ergebnis : {newVersion(), upToDate(), VantorErgebnis()}) {
    startUnanswered();
    controller_.receiveResult(++number, ergebnis, 200);
    startUnanswered();
    ++number;
    expectLoading();
    middle()->click();
    EXPECT_EQ(browser_.opened, QStringList());
  }
}

TEST_F(UpdateWindow, DropsStaleAnswers) {
  startUnanswered();
  startUnanswered();
  controller_.receiveResult(1, newVersion(), 200);
  expectLoading();
  controller_.receiveResult(2, upToDate(), 200);
  EXPECT_EQ(textOf("lblInfoBoldLine"), "You are using the latest version 1.0.");
  controller_.receiveResult(1, newVersion(), 200);
  EXPECT_EQ(textOf("lblInfoBoldLine"), "You are using the latest version 1.0.");

  startUnanswered();
  QTest::keyClick(&controller_, Qt::Key_Escape);
  EXPECT_FALSE(controller_.isVisible());
  EXPECT_FALSE(isSpinning());
  controller_.receiveResult(3, newVersion(), 200);
  EXPECT_FALSE(controller_.isVisible());
  EXPECT_EQ(textOf("lblInfoBoldLine"), "Please wait a moment.");
  startUnanswered();
  expectLoading();
}

TEST_F(UpdateWindow, IsCentredAtEveryCheck) {
  const QPoint centre = controller_.screen()->availableGeometry().center();
  for (int i = 0; i < 2; ++i) {
    startUnanswered();
    EXPECT_LE((controller_.frameGeometry().center() - centre).manhattanLength(), 20);
    controller_.move(3, 4);
  }
}

TEST_F(UpdateWindow, ScrollsLongNotesToTheirBeginning) {
  VantorErgebnis ergebnis = newVersion();
  for (int i = 0; i < 100; ++i)
    ergebnis.newReleaseNotes += u"A line.\n";
  startUnanswered();
  controller_.receiveResult(1, ergebnis, 200);
  const QScrollBar* bar = find<QPlainTextEdit>("txtDisplayReleaseNotes")->verticalScrollBar();
  EXPECT_GT(bar->maximum(), 50);
  EXPECT_EQ(bar->value(), 0);
}

TEST_F(UpdateWindow, ShowsForeignTextAsPlainText) {
  VantorErgebnis ergebnis = newVersion();
  ergebnis.newAppVersion = u"<h1>1.1</h1>";
  ergebnis.newWebsiteForProgram = u"<img src='file:///x'>";
  startUnanswered();
  controller_.receiveResult(1, ergebnis, 200);
  EXPECT_TRUE(textOf("lblInfoWithVersionNumbers").startsWith("Corvana <h1>1.1</h1> is"));
  EXPECT_EQ(find("lblInfoWithVersionNumbers")->textFormat(), Qt::PlainText);
  EXPECT_EQ(middle()->toolTip(), "<qt>Visit &lt;img src='file:///x'&gt;</qt>");
  middle()->click();
  EXPECT_EQ(browser_.opened, QStringList());
}

TEST(OpenURLString, OpensWebAddressesOnly) {
  const struct {
    const char* text;
    const char* opened;
  } cases[] = {
      {" https://x.example/a?b#c\n", "https://x.example/a?b#c"},
      {"HTTP://x.example", "http://x.example"},
      {"", ""},
      {"www.corvana.example", ""},
      {"//x.example/", ""},
      {"https:///x", ""},
      {"https://", ""},
      {"https://a b/", ""},
      {"https://x.example/%zz", ""},
      {"file:///etc/passwd", ""},
      {"/usr/bin/true", ""},
      {"ftp://x.example/", ""},
      {"mailto:me@x.example", ""},
      {"javascript:alert(1)", ""},
      {"--help", ""},
  };
  for (const auto& c : cases) {
    Browser browser;
    openURLString(c.text);
    EXPECT_EQ(browser.opened.join(' '), c.opened) << c.text;
  }
}

TEST(CheckForUpdates, NeedsAVersion) {
  const auto isShown = [] { return VantorWindowController::sharedController().isVisible(); };
  checkForUpdates({});
  checkForUpdates({{bundleVersionKey, ""}});
  EXPECT_FALSE(isShown());
  checkForUpdates({{bundleVersionKey, "1.0"}});
  EXPECT_TRUE(isShown());
  VantorWindowController::sharedController().close();
}

/// The window and a server, from request to answer.
class UpdateWindowWithServer : public UpdateWindow {
 protected:
  void serve(const QByteArray& answer, const QString& certificateName = "IP:127.0.0.1") {
    server_ = std::make_unique<HttpsServer>(authority_.issue(certificateName),
                                            [answer](auto&) { return answer; });
    authority_.trustIt();
  }
  void check() { controller_.startUpdateCheck(" Corvana ", "1.0\n", server_->address()); }
  void expectHeadline(const QString& headline) {
    EXPECT_TRUE(QTest::qWaitFor([&] { return !isSpinning(); }, 30000));
    EXPECT_EQ(textOf("lblInfoBoldLine"), headline);
  }

  static QByteArray body(std::u16string_view plain) {
    return QByteArray::fromStdString(utf8FromUtf16(simpleEncryptText(plain, true)));
  }

  test::CertificateAuthority authority_;
  std::unique_ptr<HttpsServer> server_;
};

const QString newVersionHeadline = "A new version of Corvana is available!";

TEST_F(UpdateWindowWithServer, ShowsWhatTheServerAnswers) {
  const QByteArray newer = body(u"$APP$:Corvana$VERMAC$ 1.1$");
  const struct {
    const char* what;
    QByteArray answer;
    QString headline;
  } cases[] = {
      {"a newer version", httpAnswer(newer), newVersionHeadline},
      {"the same version", httpAnswer(body(u"$APP$:Corvana$VERMAC$ 1.0$")),
       "You are using the latest version 1.0."},
      {"another application", httpAnswer(body(u"$APP$:Vantor$VERMAC$ 1.1$")), unavailableHeadline},
      {"a newer version with status 404", httpAnswer(newer, "404 Not Found"), newVersionHeadline},
      {"the same version with status 404",
       httpAnswer(body(u"$APP$:Corvana$VERMAC$ 1.0$"), "404 Not Found"), unavailableHeadline},
      {"garbage", httpAnswer("\x01\xFF garbage"), unavailableHeadline},
      {"2 MiB", httpAnswer(newer + QByteArray(2 << 20, '~')), unavailableHeadline},
      {"a redirect to http",
       httpAnswer("", "301 Moved Permanently", "Location: http://127.0.0.1/\r\n"),
       unavailableHeadline},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    serve(c.answer);
    check();
    expectHeadline(c.headline);
  }
  serve(httpAnswer(newer), "DNS:other.example");
  check();
  expectHeadline(unavailableHeadline);
}

TEST_F(UpdateWindowWithServer, ClosingGivesUpTheRequest) {
  serve({});
  check();
  ASSERT_TRUE(QTest::qWaitFor([&] { return server_->requests().size() == 1; }, 20000));
  expectLoading();
  controller_.close();
  EXPECT_TRUE(QTest::qWaitFor([&] { return server_->hungUp() == 1; }, 20000));
  EXPECT_EQ(textOf("lblInfoBoldLine"), "Please wait a moment.");
  EXPECT_FALSE(controller_.isVisible());
  check();
  ASSERT_TRUE(QTest::qWaitFor([&] { return server_->requests().size() == 2; }, 20000));
  expectLoading();
}

TEST_F(UpdateWindowWithServer, SecondClickReplacesTheFirstRequest) {
  serve({});
  check();
  ASSERT_TRUE(QTest::qWaitFor([&] { return server_->requests().size() == 1; }, 20000));
  check();
  check();
  ASSERT_TRUE(QTest::qWaitFor([&] { return server_->requests().size() == 2; }, 20000));
  EXPECT_TRUE(QTest::qWaitFor([&] { return server_->hungUp() >= 1; }, 20000));
  expectLoading();
  const auto first = std::move(server_);
  serve(httpAnswer(body(u"$APP$:Corvana$VERMAC$ 1.1$")));
  check();
  check();
  expectHeadline(newVersionHeadline);
}

/// Texts in `language` while it lives.
class Language {
 public:
  explicit Language(const char* language) { use(language); }
  ~Language() { use("en"); }

 private:
  static void use(const char* language) {
    qputenv("LC_ALL", "C.UTF-8");
    qputenv("LANGUAGE", language);
    useSystemLanguage(CORVANA_PROGRAM_FOLDER);
  }
};

/// Every text in the window, its title and tool tips included. None may be cut off in its fixed
/// frame, nor be smaller than is easily read.
QStringList wholeTexts(const QWidget& window) {
  QStringList texts = {window.windowTitle()};
  for (const auto* label : window.findChildren<QLabel*>()) {
    if (label->text().isEmpty()) continue;
    const QRect needed = label->fontMetrics().boundingRect(
        QRect(0, 0, label->width(), 1000), label->wordWrap() ? Qt::TextWordWrap : 0, label->text());
    EXPECT_LE(needed.width(), label->width()) << label->text().toStdString();
    EXPECT_LE(needed.height(), label->height()) << label->text().toStdString();
    EXPECT_FALSE(label->text().endsWith(QChar(0x2026)));
    EXPECT_GE(label->font().pixelSize(), 10) << label->text().toStdString();
    texts += label->text();
  }
  for (const auto* button : window.findChildren<QPushButton*>()) {
    EXPECT_LE(button->sizeHint().width(), button->width()) << button->text().toStdString();
    EXPECT_GE(button->font().pixelSize(), 10) << button->text().toStdString();
    texts += {button->text(), button->toolTip()};
  }
  const auto* area = window.findChild<QPlainTextEdit*>();
  EXPECT_EQ(area->verticalScrollBar()->maximum(), 0) << area->toPlainText().toStdString();
  return texts += area->toPlainText().split('\n');
}

QStringList wholeTextsOfAllStates(const char* language) {
  const Language inUse(language);
  VantorWindowController controller;
  QStringList texts;
  controller.startUpdateCheck("Corvana", "1.10.12", "https://127.0.0.1:1/");
  texts += wholeTexts(controller);
  for (const VantorErgebnis& ergebnis : {newVersion(), upToDate(), VantorErgebnis()}) {
    controller.showLoadingState();
    controller.showResult(ergebnis, 200);
    texts += wholeTexts(controller);
  }
  return texts;
}

TEST(UpdateWindowTexts, AreWholeAndTranslated) {
  const QStringList english = wholeTextsOfAllStates("en");
  const QStringList german = wholeTextsOfAllStates("de");
  ASSERT_EQ(english.size(), german.size());
  for (int i = 0; i < english.size(); ++i) {
    if (!english[i].isEmpty() && english[i] != "Notes.") {
      EXPECT_NE(english[i].toStdString(), german[i].toStdString());
    }
  }
}

}  // namespace
}  // namespace corvana

#include "window_test.moc"
