// The main window and its controller, with real files and the real batch driver.

#include <QClipboard>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QPushButton>
#include <QSettings>
#include <gtest/gtest.h>
#include <optional>

#include "app/clash_question.hpp"
#include "app/drags.hpp"
#include "app/main_window.hpp"
#include "support/audio_builder.hpp"
#include "support/temporary_folder.hpp"
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
  QList<ClashQuestion*> questions() { return window->findChildren<ClashQuestion*>(); }
  ClashQuestion* question() { return questions().value(0); }
  void answer(const QString& button) {
    for (QAbstractButton* candidate : question()->buttons())
      if (candidate->text() == button) candidate->click();
    EXPECT_TRUE(QTest::qWaitFor([&] { return question() == nullptr; }, patience)) << "still asks";
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
  folder.write("Set/Deep/d.wav", shortWav());
  makeWindow();
  dragAndDrop(*controller().dropView, {folder / "Set"});
  QCoreApplication::processEvents();
  waitForEnd();
  EXPECT_EQ(log(),
            "d.wav => d.aif  [16-bit, mono, 44100 Hz]\na.WAV => a.aif  [16-bit, mono, 44100 Hz]\n");
  EXPECT_EQ(status(), "Done – 2 files processed.");
  EXPECT_EQ(progress(), 1);
  EXPECT_TRUE(fs::exists(folder / "Set/a.aif") && fs::exists(folder / "Set/Deep/d.aif"));
}

TEST_F(Window, SaysSoWhereThereIsNothingToConvert) {
  makeWindow();
  controller().processURLs({folder.write("notes.txt", "no sound")});
  EXPECT_EQ(log(), "No WAV or AIFF files found.\n");
  EXPECT_EQ(status(), "Ready.");
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
  const std::vector<std::string> expected = {"1.aif", "1.wav",          "2.aif",
                                             "2.wav", "AIFF/1 (1).aif", "AIFF/1.aif"};
  EXPECT_EQ(folder.files(), expected);
}

TEST_F(Window, ShowsHostileNamesAsTheyAre) {
  makeWindow();
  const fs::path file = folder.write("<b>bold<b>\x1B[2J\nsecond line\xFF.wav", shortWav());
  controller().processURLs({file});
  waitForEnd();
  EXPECT_TRUE(
      log().startsWith("<b>bold<b>\uFFFD[2J\uFFFDsecond line\uFFFD.wav => <b>bold<b>\uFFFD"))
      << log().toStdString();
  EXPECT_EQ(controller().statusLabel->textFormat(), Qt::PlainText);
  EXPECT_EQ(controller().statusLabel->minimumSizeHint().width(), 0)
      << "a long name must not widen the window";
}

TEST_F(Window, KeepsItsOptions) {
  struct Option {
    QPointer<QCheckBox> ViewController::*checkbox;
    const char* key;
  };
  for (const Option& option : {Option{&ViewController::subfolderCheckbox, "UseAIFFSubfolder"},
                               Option{&ViewController::overwriteCheckbox, "OverwriteExisting"}}) {
    for (const bool checked : {true, false}) {
      makeWindow();
      click(*(controller().*option.checkbox));
      // As another program sees it: from the file.
      const QSettings file(QSettings().fileName(), QSettings::IniFormat);
      EXPECT_EQ(file.value(option.key).toBool(), checked) << option.key;
      window.reset();
      makeWindow();
      EXPECT_EQ((controller().*option.checkbox)->isChecked(), checked) << option.key;
      EXPECT_EQ(QSettings().allKeys().size(), 1 + (option.key[0] == 'O')) << "nothing else";
    }
  }
}

TEST_F(Window, TakesOverFilesOpenedBeforeItWasThere) {
  const fs::path first = folder.write("1.wav", shortWav());
  const fs::path second = folder.write("2.wav", shortWav());
  appDelegate.openFiles({first});
  appDelegate.openFiles({second});
  EXPECT_EQ(appDelegate.pendingURLs, (std::vector<fs::path>{first, second}));
  makeWindow();
  EXPECT_TRUE(appDelegate.pendingURLs.empty());
  EXPECT_EQ(controller().driver().totalFiles(), 2);
  waitForEnd();
  EXPECT_EQ(status(), "Done – 2 files processed.");
}

TEST_F(Window, AsksBeforeInputsAreReplaced) {
  enum { overwrites = 1, usesSubfolder = 2 };
  using Names = std::vector<std::string>;
  const struct {
    int options;
    const char* answer;  ///< null: no question is expected
    std::int64_t converted;
    Names files;
    bool keepsOriginals;
  } cases[] = {
      {overwrites, "&Keep Both", 2, {"a (1).aif", "a (1).wav", "a.aif", "a.wav"}, true},
      {overwrites, "&Replace", 2, {"a.aif", "a.wav"}, false},
      {overwrites, "&Cancel", 0, {"a.aif", "a.wav"}, true},
      {overwrites | usesSubfolder, nullptr, 2, {"AIFF/a.aif", "WAV/a.wav", "a.aif", "a.wav"}, true},
      {0, nullptr, 2, {"a (1).aif", "a (1).wav", "a.aif", "a.wav"}, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.options << (c.answer ? c.answer : ""));
    const TemporaryFolder inputs;
    const ByteBuffer aiffInput = aiff({comm({.frames = 3, .bits = 8}), ssnd({1, 2, 3})});
    const fs::path aif = inputs.write("a.aif", aiffInput);
    const fs::path wav = inputs.write("a.wav", shortWav());
    makeWindow();
    controller().overwriteCheckbox->setChecked((c.options & overwrites) != 0);
    controller().subfolderCheckbox->setChecked((c.options & usesSubfolder) != 0);
    dragAndDrop(*controller().dropView, {wav, aif});
    if (c.answer) {
      ASSERT_TRUE(QTest::qWaitFor([&] { return question() != nullptr; }, patience));
      EXPECT_EQ(controller().driver().totalFiles(), 0) << "nothing before the answer";
      answer(c.answer);
    } else {
      QCoreApplication::processEvents();
      EXPECT_EQ(question(), nullptr);
    }
    EXPECT_EQ(controller().driver().totalFiles(), c.converted);
    waitForEnd();
    EXPECT_EQ(log().count('\n'), c.converted);
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
  appDelegate.openFiles(writePair("<b>long & bold" + std::string(200, 'x')));
  makeWindow();
  EXPECT_EQ(question(), nullptr) << "not before the window is there";
  ASSERT_TRUE(QTest::qWaitFor([&] { return question() != nullptr; }, patience));
  EXPECT_TRUE(question()->text().contains("<b>long & b"));
  EXPECT_EQ(question()->textFormat(), Qt::PlainText);
  EXPECT_LT(question()->width(), window->width());

  appDelegate.openFiles(writePair("2"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return questions().size() == 2; }, patience));
  EXPECT_EQ(questions()[1]->defaultButton()->text(), "&Keep Both");
  QTest::keyClick(questions()[1], Qt::Key_Escape);
  ASSERT_TRUE(QTest::qWaitFor([&] { return questions().size() == 1; }, patience));
  EXPECT_EQ(controller().driver().totalFiles(), 0) << "Escape cancels";
  answer("&Keep Both");
  EXPECT_EQ(controller().driver().totalFiles(), 2) << "the other batch goes its way";
  waitForEnd();

  appDelegate.openFiles(writePair("3"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return question() != nullptr; }, patience));
  appDelegate.openFiles(writePair("4"));
  window->close();
  window.reset();
  QCoreApplication::processEvents();
  EXPECT_FALSE(fs::exists(folder / "3 (1).aif"));
}

TEST_F(Window, EndsWithinASecondWhileConverting) {
  const fs::path first = writeLongWav(folder, "1.wav", 1 << 30);
  makeWindow();
  controller().processURLs({first, writeLongWav(folder, "2.wav", 1 << 30)});
  ASSERT_TRUE(QTest::qWaitFor([&] { return fs::exists(folder / "1.aif"); }, patience));
  QElapsedTimer clock;
  clock.start();
  window->close();
  window.reset();
  EXPECT_LT(clock.elapsed(), 1000);
  QCoreApplication::processEvents();
  EXPECT_FALSE(fs::exists(folder / "2.aif"));
}

TEST_F(Window, ChecksForUpdatesOnRequest) {
  makeWindow();
  for (QAction* action : window->findChildren<QAction*>())
    if (action->text().contains("Check for &Updates")) action->trigger();
  EXPECT_TRUE(VantorWindowController::sharedController().isVisible());
  VantorWindowController::sharedController().close();
}

TEST_F(Window, IsUsableByKeyboard) {
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
  press(Qt::Key_O);
  window->findChild<QFileDialog*>()->reject();
  press(Qt::Key_Q);
  EXPECT_FALSE(window->isVisible());
}

}  // namespace
}  // namespace corvana::test
