// The log of the main window, in its window and with real entries.

#include <QClipboard>
#include <QDesktopServices>
#include <QDrag>
#include <QFileDialog>
#include <QMessageBox>
#include <QMimeData>
#include <QScrollBar>
#include <QSettings>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextLayout>
#include <QToolTip>
#include <gtest/gtest.h>

#include "app/isolates.hpp"
#include "app/main_window.hpp"
#include "support/audio_builder.hpp"
#include "support/temporary_folder.hpp"

namespace corvana::test {
namespace {

using namespace std::string_literals;

constexpr int patience = 20'000;  // ms

const std::string warningSign = "   ⚠\uFE0E ";

LogEntry converted(const std::string& name, const std::vector<std::string>& warnings = {}) {
  LogEntry entry{{name + ".wav => " + name + ".aif  [16-bit]"},
                 Outcome::converted,
                 "/in/" + name + ".wav",
                 "/out/" + name + ".aif"};
  for (const std::string& warning : warnings)
    entry.lines.push_back(warningSign + warning);
  return entry;
}

LogEntry failed(const std::string& name) {
  return {{"✗ " + name + ".wav: Not a RIFF file."}, Outcome::failed, "/in/" + name + ".wav"};
}

/// Takes URLs in the place of the desktop.
class UrlHandler : public QTextBrowser {
 public:
  QUrl opened;

 protected:
  void doSetSource(const QUrl& url, QTextDocument::ResourceType) override { opened = url; }
};

class Log : public testing::Test {
 protected:
  Log() {
    QSettings().clear();
    window.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&window, patience));
  }

  void add(const std::vector<LogEntry>& entries) {
    for (const LogEntry& entry : entries)
      window.controller().appendLog(entry);
    window.controller().showChanges();
  }
  QString selected() const {
    return log.textCursor().selectedText().replace(QChar::ParagraphSeparator, '\n');
  }
  void press(int key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(&window, Qt::Key(key), modifiers);
  }
  QString clipboard() { return QGuiApplication::clipboard()->text(); }
  QAction* action(const QString& text) {
    for (QAction* candidate : window.findChildren<QAction*>())
      if (candidate->text() == text) return candidate;
    ADD_FAILURE() << "no " << text.toStdString();
    return nullptr;
  }
  /// Selects the line, as a click into it and a key would.
  void choose(int line) {
    QTextCursor cursor(log.document()->findBlockByNumber(line));
    cursor.select(QTextCursor::LineUnderCursor);
    log.setTextCursor(cursor);
  }
  QTextBlock laidOut(int line) const {
    const QTextBlock block = log.document()->findBlockByNumber(line);
    log.document()->documentLayout()->blockBoundingRect(block);
    return block;
  }
  bool isAtEnd() const {
    return log.verticalScrollBar()->value() == log.verticalScrollBar()->maximum();
  }

  MainWindow window;
  LogView& log = *window.controller().logView;
  QToolButton& counts = *window.controller().countsButton;
};

TEST_F(Log, CountsARunAndLeadsThroughItsProblems) {
  EXPECT_FALSE(counts.isVisible());
  add({failed("of an earlier run")});
  window.controller().runStarted();
  add({{{"No WAV or AIFF files found."}}, converted("a"), converted("b", {"1", "2"}), failed("c")});
  add({converted("d", {"3"}), converted("e")});
  EXPECT_EQ(counts.text(), "4 converted · 1 failed · 2 with warnings");
  EXPECT_TRUE(counts.isVisible());
  const QString b = "b.wav => b.aif  [16-bit]\n   ⚠\uFE0E 1\n   ⚠\uFE0E 2";
  const QString c = "✗ c.wav: Not a RIFF file.";
  const QString d = "d.wav => d.aif  [16-bit]\n   ⚠\uFE0E 3";
  for (const QString& expected : {b, c, d, b}) {
    press(Qt::Key_F3);
    EXPECT_EQ(selected(), expected);
  }
  for (const QString& expected : {d, c, b}) {
    press(Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_EQ(selected(), expected);
  }
  counts.setFocus();
  QTest::keyClick(&counts, Qt::Key_Space);
  EXPECT_EQ(selected(), c);

  window.controller().runStarted();
  add({converted("f")});
  EXPECT_EQ(counts.text(), "1 converted");
  EXPECT_EQ(counts.focusPolicy(), Qt::NoFocus) << "nowhere to lead to";
  press(Qt::Key_F3);
  EXPECT_EQ(selected(), c);
}

TEST_F(Log, KnowsTheFilesOfTheDriver) {
  const TemporaryFolder folder;
  folder.write("a.wav", wav({fmt({}), data(ByteBuffer(8))}));
  folder.write("a.aif", "something else");
  window.controller().processURLs({folder / "a.aif", folder / "a.wav"});
  EXPECT_TRUE(QTest::qWaitFor([&] { return log.document()->blockCount() == 3; }, patience));
  log.selectAll();
  EXPECT_EQ(log.chosenFiles(), (std::vector{folder / "a.aif", folder / "a (1).aif"}));
}

TEST_F(Log, SelectionStaysAndTheEndIsShownWhenTheLogGrows) {
  for (int i = 0; i < 100; ++i)
    add({converted("entry")});
  for (const bool isWhole : {false, true}) {
    for (const bool isBackward : {false, true}) {
      QTextCursor selection(log.document());
      selection.movePosition(isWhole ? QTextCursor::End : QTextCursor::EndOfWord);
      const int start = isBackward ? selection.position() : 0;
      const int end = selection.position() - start;
      selection.setPosition(start);
      selection.setPosition(end, QTextCursor::KeepAnchor);
      log.setTextCursor(selection);
      add({converted("last")});
      EXPECT_EQ(std::pair(log.textCursor().anchor(), log.textCursor().position()),
                std::pair(start, end));
      EXPECT_TRUE(isAtEnd());
    }
  }
}

TEST_F(Log, NoNameAddsALine) {
  add({converted("a\uFDD0b\uFDD1c\u2029d\ne\rf"), failed("next")});
  EXPECT_EQ(log.document()->blockCount(), 3);
  press(Qt::Key_F3);
  EXPECT_EQ(selected(), "✗ next.wav: Not a RIFF file.");
}

TEST_F(Log, WrapsWarningsBelowTheirText) {
  std::string words;
  for (int i = 0; i < 60; ++i)
    words += "many words ";
  add({converted("a", {words, "short"}), converted(words)});
  const auto line = [&](int block, int number) { return laidOut(block).layout()->lineAt(number); };
  const QTextLine first = line(1, 0);
  EXPECT_NEAR(line(1, 1).x(), first.cursorToX(6), 0.5);
  EXPECT_LE(line(1, 1).x() + line(1, 1).naturalTextWidth(), log.viewport()->width());
  EXPECT_EQ(line(3, 1).x(), line(3, 0).x()) << "only warnings";

  window.setLayoutDirection(Qt::RightToLeft);
  window.resize(window.width() - 40, window.height());
  QCoreApplication::processEvents();
  EXPECT_EQ(line(1, 1).x(), line(1, 0).x());
  EXPECT_LT(line(1, 1).width(), line(1, 0).width());
}

TEST_F(Log, PartsOfAnEntryKeepTheirOrderAndTheTextHasNoMarks) {
  std::string text;
  for (const auto direction : {Qt::LeftToRight, Qt::RightToLeft}) {
    window.setLayoutDirection(direction);
    for (const std::string name : {"תוף 2", "2 طبل 12", "drum"}) {
      const LogEntry entry = converted(name, {"1"});
      add({entry});
      text += entry.lines[0] + '\n' + entry.lines[1] + '\n';
      const QTextBlock block = laidOut(log.document()->blockCount() - 3);
      const QTextLine line = block.layout()->lineAt(0);
      int end = 0;
      qreal edge = -10;  // of the parts before, from where the line begins
      for (const std::string& part : {name + ".wav", "=>"s, name + ".aif", "[16-bit]"s}) {
        const int start = static_cast<int>(block.text().indexOf(part.c_str(), end));
        end = start + static_cast<int>(QString(part.c_str()).size());
        std::vector<qreal> edges;
        for (int i = start; i < end; ++i)
          for (const auto side : {QTextLine::Leading, QTextLine::Trailing})
            edges.push_back(std::abs(line.cursorToX(i, side) -
                                     (direction == Qt::LeftToRight ? 0 : line.width())));
        const auto [nearest, furthest] = std::minmax_element(edges.begin(), edges.end());
        EXPECT_GE(*nearest, std::exchange(edge, *furthest) - 0.5) << part << " in " << text;
      }
    }
  }
  EXPECT_EQ(log.text().toStdString(), text);
  log.selectAll();
  log.copy();
  EXPECT_EQ(clipboard().toStdString(), text);
  press(Qt::Key_F, Qt::ControlModifier);
  QTest::keyClicks(window.findChild<FindBar*>()->findChild<QLineEdit*>(), "12.aif  [16");
  EXPECT_EQ(withoutIsolates(selected()), "12.aif  [16");
}

TEST_F(Log, EndStaysInSightWhenTheWindowChanges) {
  for (int i = 0; i < 200; ++i)
    add({converted("a", {"a warning that takes several lines where the window is narrow, since "
                         "it has quite a lot to say about the file that it speaks of"})});
  for (const QSize size : {QSize(500, 450), QSize(500, 800), QSize(900, 500)}) {
    window.resize(size);
    QCoreApplication::processEvents();
    EXPECT_TRUE(isAtEnd());
  }
  const int size = log.font().pointSize();
  press(Qt::Key_Plus, Qt::ControlModifier);
  EXPECT_EQ(log.font().pointSize(), size + 1);
  EXPECT_TRUE(isAtEnd());
  QWheelEvent turn({5, 5}, log.viewport()->mapToGlobal(QPointF(5, 5)), {}, {0, -240}, {},
                   Qt::ControlModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(log.viewport(), &turn);
  press(Qt::Key_Minus, Qt::ControlModifier);
  EXPECT_EQ(log.font().pointSize(), size - 1);
  press(Qt::Key_0, Qt::ControlModifier);
  EXPECT_EQ(log.font().pointSize(), size);
  EXPECT_TRUE(isAtEnd());

  log.verticalScrollBar()->setValue(10);
  window.resize(600, 500);
  QCoreApplication::processEvents();
  EXPECT_FALSE(isAtEnd()) << "only if it was";
}

TEST_F(Log, LeadsToTheFiles) {
  EXPECT_FALSE(action("&Copy Path")->isEnabled());
  add({converted("a", {"1"}), {{"No WAV or AIFF files found."}}, failed("b"), converted("c")});
  choose(1);
  EXPECT_TRUE(action("&Copy Path")->isEnabled());
  action("&Copy Path")->trigger();
  EXPECT_EQ(clipboard(), "/out/a.aif") << "also from a warning";
  choose(2);
  EXPECT_FALSE(action("&Copy Path")->isEnabled());
  log.selectAll();
  action("&Copy Path")->trigger();
  EXPECT_EQ(clipboard(), "/out/a.aif\n/in/b.wav\n/out/c.aif");
  log.copy();
  EXPECT_EQ(clipboard(), log.toPlainText());
  EXPECT_FALSE(QGuiApplication::clipboard()->mimeData()->hasUrls()) << "a copy is a text";

  // Without a file manager on the bus: the folder.
  UrlHandler handler;
  QDesktopServices::setUrlHandler("file", &handler, "setSource");
  choose(0);
  action("Show in &File Manager")->trigger();
  EXPECT_EQ(handler.opened, QUrl("file:///out"));
  QDesktopServices::unsetUrlHandler("file");
}

TEST_F(Log, DragsTheWrittenFiles) {
  add({converted("100% Flöte \xFF"), failed("b"), converted("c")});
  log.selectAll();
  const QPoint start =
      log.cursorRect(QTextCursor(log.document()->firstBlock())).center() + QPoint(30, 0);
  QTest::mousePress(log.viewport(), Qt::LeftButton, {}, start);
  const QPointF away = start + QPoint(60, 0);
  QMouseEvent move(QEvent::MouseMove, away, log.viewport()->mapToGlobal(away), Qt::NoButton,
                   Qt::LeftButton, {});
  QApplication::sendEvent(log.viewport(), &move);
  // Without a screen the drag is over at once.
  const auto* drag = window.findChild<QDrag*>();
  ASSERT_NE(drag, nullptr);
  const QList<QUrl> urls = drag->mimeData()->urls();
  ASSERT_EQ(urls.size(), 2);
  EXPECT_EQ(urls[0].toEncoded(), "file:///out/100%25%20Fl%C3%B6te%20%FF.aif");
  EXPECT_EQ(urls[1].toEncoded(), "file:///out/c.aif");
  EXPECT_EQ(drag->mimeData()->text(), log.toPlainText());
}

TEST_F(Log, TellsFilesOfTheSameNameApart) {
  add({converted("a"), failed("<b>b")});
  const auto tip = [&](int line) {
    const QPoint place =
        log.cursorRect(QTextCursor(log.document()->findBlockByNumber(line))).center();
    QHelpEvent event(QEvent::ToolTip, place, log.viewport()->mapToGlobal(place));
    QApplication::sendEvent(log.viewport(), &event);
    return QToolTip::text().remove(QChar(0x200B));
  };
  EXPECT_TRUE(tip(0).contains(">/in/a.wav<") && tip(0).contains(">=&gt; /out/a.aif<"))
      << tip(0).toStdString();
  EXPECT_TRUE(tip(1).contains(">/in/&lt;b&gt;b.wav<"));
}

TEST_F(Log, FindsTexts) {
  add({converted("alpha"), converted("beta"), converted("Alphabet")});
  press(Qt::Key_F, Qt::ControlModifier);
  auto* bar = window.findChild<FindBar*>();
  auto* field = bar->findChild<QLineEdit*>();
  ASSERT_TRUE(bar->isVisible());
  QTest::keyClicks(field, "alphab");
  EXPECT_EQ(selected(), "Alphab");
  QTest::keyClick(field, Qt::Key_Backspace);
  const auto line = [&] { return log.textCursor().blockNumber(); };
  EXPECT_EQ(line(), 2);
  for (const auto& [modifier, expected] : {std::pair(Qt::NoModifier, 2),
                                           {Qt::NoModifier, 0},
                                           {Qt::NoModifier, 0},
                                           {Qt::ShiftModifier, 0}}) {
    QTest::keyClick(field, Qt::Key_Return, modifier);
    EXPECT_EQ(line(), expected) << "each name stands twice in its line";
  }
  QTest::keyClicks(field, "x");
  EXPECT_TRUE(bar->findChild<QLabel*>()->isVisible());
  QTest::keyClick(field, Qt::Key_Escape);
  EXPECT_FALSE(bar->isVisible());
  EXPECT_TRUE(log.hasFocus());
}

TEST_F(Log, IsSavedAsItIs) {
  const TemporaryFolder folder;
  QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  add({converted("a\u00A0b", {"1"}), failed("c")});
  for (const char* name : {"log.txt", "missing/log.txt"}) {
    press(Qt::Key_S, Qt::ControlModifier);
    auto* panel = window.findChild<QFileDialog*>();
    ASSERT_NE(panel, nullptr);
    emit panel->fileSelected((folder / name).c_str());
    delete panel;
  }
  EXPECT_EQ(readText(folder / "log.txt"), "a\u00A0b.wav => a\u00A0b.aif  [16-bit]\n" + warningSign +
                                              "1\n✗ c.wav: Not a RIFF file.\n");
  EXPECT_NE(window.findChild<QMessageBox*>(), nullptr) << "says that it cannot";
}

}  // namespace
}  // namespace corvana::test
