#include "app/open_panel.hpp"

#include <QDialogButtonBox>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

#include "app/main_window.hpp"
#include "support/audio_builder.hpp"
#include "support/temporary_folder.hpp"

namespace corvana::test {
namespace {

constexpr int patience = 20'000;  // ms

class Panel : public testing::Test {
 protected:
  Panel() {
    for (const char* file : {"a.wav", "B.AIF", "notes.txt", "Deep/c.wav"})
      folder.write(file, wav({fmt({}), data(ByteBuffer(8))}));
    panel.setDirectory(folder.path().c_str());
    EXPECT_TRUE(waitFor("a.wav"));
  }

  OpenPanel& open() {
    window.show();
    window.controller().openDocument();
    return *window.findChild<OpenPanel*>();
  }

  QModelIndex entry(const char* file) {
    const QModelIndex first = list.model()->index(0, 0, list.rootIndex());
    return list.model()->match(first, Qt::DisplayRole, file, 1, Qt::MatchExactly).value(0);
  }

  bool waitFor(const char* file) {
    return QTest::qWaitFor([&] { return entry(file).isValid(); }, patience);
  }

  void convert(int count) {
    ASSERT_TRUE(confirm.isEnabled());
    QTest::mouseClick(&confirm, Qt::LeftButton);
    const auto totalFiles = [&] { return window.controller().driver().totalFiles(); };
    EXPECT_EQ(totalFiles(), count);
    EXPECT_TRUE(QTest::qWaitFor([&] { return totalFiles() == 0; }, patience));
  }

  TemporaryFolder folder;
  MainWindow window;
  OpenPanel& panel = open();
  QListView& list = *panel.findChild<QListView*>("listView");
  QLineEdit& name = *panel.findChild<QLineEdit*>("fileNameEdit");
  QPushButton& confirm = *panel.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Open);
};

TEST_F(Panel, ShowsFoldersAndAudioFilesAndTheRestOnRequest) {
  EXPECT_EQ(panel.windowModality(), Qt::WindowModal);
  EXPECT_FALSE(confirm.isEnabled());
  EXPECT_TRUE(entry("B.AIF").isValid() && entry("Deep").isValid());
  EXPECT_FALSE(entry("notes.txt").isValid());
  panel.selectNameFilter(panel.nameFilters().last());
  EXPECT_TRUE(waitFor("notes.txt"));
}

TEST_F(Panel, ConvertsASelectedFolder) {
  EXPECT_TRUE(waitFor("Deep"));
  list.setCurrentIndex(entry("Deep"));
  convert(1);
}

TEST_F(Panel, ConvertsTypedNamesOfWhatIsThere) {
  name.setText("missing.wav");
  EXPECT_FALSE(confirm.isEnabled());
  name.setText("\"a.wav\" \"Deep\"");
  convert(2);
  EXPECT_TRUE(fs::exists(folder / "a.aif") && fs::exists(folder / "Deep/c.aif"));
}

TEST_F(Panel, GoesIntoATypedFolderAndRemembersIt) {
  name.setFocus();
  name.setText("Deep");
  QTest::keyClick(&name, Qt::Key_Return);
  EXPECT_TRUE(panel.isVisible());
  panel.reject();
  EXPECT_EQ(window.controller().driver().totalFiles(), 0);
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(open().directory().absolutePath().toStdString(), folder / "Deep");
}

}  // namespace
}  // namespace corvana::test
