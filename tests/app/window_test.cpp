// The main window and its controller, with real files and the real batch driver.

#include <QClipboard>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <gtest/gtest.h>
#include <optional>

#include "app/drags.hpp"
#include "app/help_window.hpp"
#include "app/main_window.hpp"
#include "app/paste_files.hpp"
#include "support/audio_builder.hpp"
#include "support/temporary_folder.hpp"
#include "update_window/check_for_updates.hpp"
#include "update_window/vantor_window_controller.hpp"

namespace corvana::test {
namespace {

constexpr int patience = 20'000;  // ms

ByteBuffer shortWav() {
  return wav({fmt({}), data(ByteBuffer(200))});
}

/// A WAV file that takes a while; on the disk it is a hole.
fs::path writeLongWav(const TemporaryFolder& folder, const fs::path& name, std::uint32_t size) {
  const ByteBuffer beginning =
      join({text("RIFF"), le(size + 36, 4), text("WAVE"), fmt({}), text("data"), le(size, 4)});
  fs::resize_file(folder.write(name, beginning), beginning.size() + size);
  return folder / name;
}

class Window : public testing::Test {
 protected:
  Window() { QSettings().clear(); }

  void makeWindow() {
    window.emplace(&appDelegate);
    window->show();
  }

  ViewController& controller() { return window->controller(); }
  QString status() { return controller().statusLabel->text(); }
  QString log() { return controller().logView->toPlainText(); }
  double progress() {
    const QProgressBar& bar = *controller().progressIndicator;
    return static_cast<double>(bar.value()) / bar.maximum();
  }
  void waitForEnd() {
    EXPECT_TRUE(QTest::qWaitFor([&] { return controller().driver().totalFiles() == 0; }, patience));
  }
  QList<QMessageBox*> questions() { return window->findChildren<QMessageBox*>(); }
  void waitForQuestions(int count) {
    ASSERT_TRUE(QTest::qWaitFor([&] { return questions().size() == count; }, patience));
  }
  void answer(const QString& button) {
    for (QAbstractButton* candidate : questions()[0]->buttons())
      if (candidate->text() == button) candidate->click();
    waitForQuestions(0);
  }
  /// As the driver does it.
  void appendLog(const std::string& entry) {
    controller().appendLog({{entry}});
    controller().showChanges();
  }
  static void click(QCheckBox& checkbox) {
    QTest::mouseClick(&checkbox, Qt::LeftButton, {}, QPoint(10, checkbox.height() / 2));
  }

  TemporaryFolder folder;
  AppDelegate appDelegate;
  std::optional<MainWindow> window;
};

TEST_F(Window, ConvertsADroppedFolder) {
  folder.write("Set/a.WAV", shortWav());
  folder.write("Set/c.txt", "no sound");
  folder.write("Set/Deep/<b>\x1B[2J\nd\xFF.wav", shortWav());
  makeWindow();
  const int highDropView = controller().dropView->height();
  controller().processURLs({folder / "Set/c.txt"});
  EXPECT_EQ(log(), "No WAV or AIFF files found.\n");
  dragAndDrop(*controller().logView->viewport(), {folder / "Set"});
  QCoreApplication::processEvents();
  waitForEnd();
  EXPECT_TRUE(log().contains("\n<b>\uFFFD[2J\uFFFDd\uFFFD.wav => <b>\uFFFD[2J"));
  EXPECT_TRUE(log().endsWith("\na.WAV => a.aif  [16-bit, mono, 44100 Hz]\n"));
  EXPECT_LT(controller().dropView->height(), highDropView);
  EXPECT_EQ(controller().statusLabel->textFormat(), Qt::PlainText);
  EXPECT_EQ(controller().statusLabel->minimumSizeHint().width(), 0)
      << "a long name must not widen the window";
}

TEST_F(Window, ShowsTheRunAndReadsItsOptionsAtEachDrop) {
  const fs::path first = folder.write("1.wav", shortWav());
  const fs::path second = writeLongWav(folder, "2.wav", 256 << 20);
  makeWindow();
  controller().processURLs({first, second});
  ASSERT_TRUE(QTest::qWaitFor([&] { return progress() > 0.5; }, patience));
  EXPECT_LT(progress(), 1);
  EXPECT_EQ(status(), "Converting 2.wav …");
  click(*controller().subfolderCheckbox);
  controller().processURLs({first, first});
  EXPECT_LT(progress(), 0.5);
  waitForEnd();
  EXPECT_EQ(status(), "Done – 4 files processed.");
  EXPECT_EQ(progress(), 1);
  EXPECT_TRUE(fs::exists(folder / "1.aif") && fs::exists(folder / "AIFF/1 (1).aif"));
}

TEST_F(Window, PastesCopiedFiles) {
  makeWindow();
  window->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&*window, patience));
  const QByteArray url = urlTextOfPath(folder.write("a b\xFF.wav", shortWav())).toUtf8();
  int pasted = 0;
  for (const auto& [format, data, areFiles] :
       {std::tuple("text/plain", url, false),
        {"text/uri-list", "https://www.corvana.example/a.wav\r\n", false},
        {"text/uri-list", url + "\r\n", true},
        {"x-special/gnome-copied-files", "cut\n" + url, true}}) {
    auto* copied = new QMimeData;
    copied->setData(format, data);
    QGuiApplication::clipboard()->setMimeData(copied);
    EXPECT_EQ(window->findChild<PasteFilesAction*>()->isEnabled(), areFiles) << data.constData();
    QTest::keyClick(controller().logView, Qt::Key_V, Qt::ControlModifier);
    waitForEnd();
    pasted += areFiles ? 1 : 0;
    EXPECT_EQ(log().count("=>"), pasted);
  }
  EXPECT_TRUE(fs::exists(folder / "a b\xFF.wav")) << "cut or not";
}

TEST_F(Window, KeepsItsOptions) {
  for (const auto& [checkbox, key] :
       {std::pair(&ViewController::subfolderCheckbox, "UseAIFFSubfolder"),
        {&ViewController::overwriteCheckbox, "OverwriteExisting"}}) {
    for (const bool checked : {true, false}) {
      makeWindow();
      click(*(controller().*checkbox));
      // As another program sees it: from the file.
      const QSettings file(QSettings().fileName(), QSettings::IniFormat);
      EXPECT_EQ(file.value(key).toBool(), checked) << key;
      makeWindow();
      EXPECT_EQ((controller().*checkbox)->isChecked(), checked) << key;
    }
  }
}

TEST_F(Window, HintsOnceAtOptionsThatAreLostAndAtFilesConvertedBack) {
  makeWindow();
  const QLabel& hint = *controller().hintLabel;
  const QString preferences = QFileInfo(QSettings().fileName()).dir().filePath("..");
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                     folder.write("file", "").c_str());
  click(*controller().overwriteCheckbox);
  EXPECT_TRUE(hint.text().contains("Corvana.conf”: Not a directory")) << hint.text().toStdString();

  folder.write("Set/a.wav", shortWav());
  folder.write("Set/a.aif", shortWav());
  click(*controller().overwriteCheckbox);
  controller().processURLs({folder / "Set", folder.write("b.wav", shortWav())});
  EXPECT_TRUE(hint.isVisible() && hint.text().startsWith("2 files lie beside"));
  waitForEnd();
  controller().processURLs({folder / "b.wav"});
  click(*controller().subfolderCheckbox);
  EXPECT_FALSE(hint.isVisible());
  waitForEnd();
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, preferences);
}

TEST_F(Window, AsksBeforeInputsAreReplaced) {
  const struct {
    const char* answer;
    std::int64_t converted;
    std::vector<std::string> files;
    bool keepsOriginals;
  } cases[] = {
      {"&Keep Both", 2, {"a (1).aif", "a (1).wav", "a.aif", "a.wav"}, true},
      {"&Replace", 2, {"a.aif", "a.wav"}, false},
      {"&Cancel", 0, {"a.aif", "a.wav"}, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.answer);
    const TemporaryFolder inputs;
    const ByteBuffer aiffInput = aiff({comm({.frames = 3, .bits = 8}), ssnd({1, 2, 3})});
    const fs::path aif = inputs.write("a.aif", aiffInput);
    const fs::path wav = inputs.write("a.wav", shortWav());
    makeWindow();
    controller().overwriteCheckbox->setChecked(true);
    dragAndDrop(*controller().dropView, {wav, aif});
    waitForQuestions(1);
    EXPECT_EQ(controller().driver().totalFiles(), 0) << "nothing before the answer";
    answer(c.answer);
    EXPECT_EQ(controller().driver().totalFiles(), c.converted);
    waitForEnd();
    EXPECT_EQ(status(), c.converted == 0 ? "Ready." : "Done – 2 files processed.");
    EXPECT_EQ(inputs.files(), c.files);
    EXPECT_EQ(readFile(aif) == aiffInput && readFile(wav) == shortWav(), c.keepsOriginals);
  }
}

TEST_F(Window, EachBatchHasAQuestionOfItsOwn) {
  QSettings().setValue("OverwriteExisting", true);
  const auto writePair = [&](const std::string& name) {
    return std::vector<fs::path>{folder.write(name + ".wav", shortWav()),
                                 folder.write(name + ".aif", shortWav())};
  };
  for (const fs::path& file : writePair("<b>long & bold" + std::string(200, 'x')))
    appDelegate.openFiles({file});
  makeWindow();
  EXPECT_TRUE(questions().empty()) << "not before the window is there";
  waitForQuestions(1);
  EXPECT_TRUE(questions()[0]->text().contains("<b>long & b"));
  EXPECT_EQ(questions()[0]->textFormat(), Qt::PlainText);
  EXPECT_LT(questions()[0]->width(), window->width());

  appDelegate.openFiles(writePair("2"));
  waitForQuestions(2);
  EXPECT_EQ(questions()[1]->defaultButton()->text(), "&Keep Both");
  QTest::keyClick(questions()[1], Qt::Key_Escape);
  waitForQuestions(1);
  EXPECT_EQ(controller().driver().totalFiles(), 0) << "Escape cancels";
  answer("&Keep Both");
  EXPECT_EQ(controller().driver().totalFiles(), 2) << "the other batch goes its way";
  waitForEnd();

  appDelegate.openFiles(writePair("3"));
  waitForQuestions(1);
  window->close();
  window.reset();
  EXPECT_FALSE(fs::exists(folder / "3 (1).aif"));
}

TEST_F(Window, StopsARunAndTakesFilesAgain) {
  const fs::path first = writeLongWav(folder, "1.wav", 1 << 30);
  makeWindow();
  QToolButton& stop = *controller().stopButton;
  const QRect place = controller().logView->geometry();
  EXPECT_FALSE(stop.isVisible() || stop.defaultAction()->isEnabled());
  controller().processURLs({first});
  ASSERT_TRUE(QTest::qWaitFor([&] { return fs::exists(folder / "1.aif"); }, patience));
  EXPECT_TRUE(stop.isVisible());
  EXPECT_EQ(controller().logView->geometry(), place);
  stop.click();
  EXPECT_FALSE(stop.defaultAction()->isEnabled()) << "once is enough";
  waitForEnd();
  EXPECT_EQ(status(), "Stopped – 1 of 1 file processed.");
  EXPECT_FALSE(stop.isVisible());
  controller().processURLs({folder.write("2.wav", shortWav())});
  waitForEnd();
  EXPECT_EQ(status(), "Done – 1 file processed.");
}

TEST_F(Window, AsksBeforeItQuitsDuringARun) {
  const fs::path input = writeLongWav(folder, "1.wav", 512 << 20);
  const fs::path brief = folder.write("2.wav", shortWav());
  const struct {
    const char* answer;  ///< none: the run ends, or else the session
    bool sessionEnds;
    std::string status;
    const char* said;
  } cases[] = {
      {"&Stop and quit", false, "Stopped – 1 of 2 files processed.", "1.aif' is incomplete.\n"},
      {"&Continue", false, "Done – 2 files processed.", ""},
      {nullptr, false, "Done – 2 files processed.", ""},
      {nullptr, true, "Converting 1.wav …", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.status);
    makeWindow();
    controller().processURLs({input, brief});
    ASSERT_TRUE(QTest::qWaitFor([&] { return progress() > 0; }, patience));
    if (c.sessionEnds) {
      void* nothing[] = {nullptr, nullptr};
      QMetaObject::activate(
          qApp, qApp->metaObject()->indexOfSignal("commitDataRequest(QSessionManager&)"), nothing);
    }
    window->close();
    window->close();
    EXPECT_EQ(window->isVisible(), !c.sessionEnds);
    EXPECT_EQ(questions().size(), c.sessionEnds ? 0 : 1);
    testing::internal::CaptureStderr();
    QElapsedTimer clock;
    clock.start();
    if (c.answer != nullptr) answer(c.answer);
    if (!c.sessionEnds) waitForEnd();
    waitForQuestions(0);
    EXPECT_TRUE(QString::fromStdString(testing::internal::GetCapturedStderr()).contains(c.said));
    EXPECT_EQ(status(), c.status.c_str());
    EXPECT_EQ(window->isVisible(), c.answer == QString("&Continue"));
    EXPECT_TRUE(log().contains(c.said));
    window.reset();
    EXPECT_TRUE(clock.elapsed() < 1000 || c.said[0] == 0);
    fs::remove(folder / "1.aif");
  }
}

TEST_F(Window, IsUsableByKeyboardAndMenu) {
  makeWindow();
  window->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&*window, patience));
  for (QWidget* view : window->centralWidget()->findChildren<QWidget*>()) {
    const bool isReached = view->isVisible() && (view->focusPolicy() & Qt::TabFocus) != 0;
    const QString title = view->accessibleName() + view->property("text").toString();
    EXPECT_FALSE(isReached && title.isEmpty()) << view->metaObject()->className();
  }

  appendLog("entry");
  const auto press = [&](Qt::Key key) { QTest::keyClick(&*window, key, Qt::ControlModifier); };
  press(Qt::Key_A);
  press(Qt::Key_C);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), "entry\n");
  for (QAction* action : window->findChildren<QAction*>())
    if (action->text().contains("Check for &Updates") || action->text() == "&About Corvana")
      action->trigger();
  EXPECT_EQ(VantorWindowController::sharedController().isVisible(), offersUpdateCheck());
  const QString about = QApplication::activeModalWidget()->findChildren<QLabel*>().last()->text();
  EXPECT_TRUE(about.contains(qVersion()) && about.contains("href=\"https://"))
      << about.toStdString();
  QApplication::activeModalWidget()->close();
  QTest::keyClick(&*window, Qt::Key_F1);
  auto& help = *window->findChild<HelpWindow*>();
  EXPECT_TRUE(help.findChild<QTextBrowser*>()->toPlainText().contains("Shift+F3"));
  QTest::keyClick(&help, Qt::Key_Escape);
  EXPECT_FALSE(help.isVisible());
  window->activateWindow();
  press(Qt::Key_O);
  window->findChild<QFileDialog*>()->reject();
  press(Qt::Key_Q);
  EXPECT_FALSE(window->isVisible());
}

}  // namespace
}  // namespace corvana::test
