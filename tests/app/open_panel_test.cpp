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
    for (const char* name : {"a.wav", "B.AIF", "notes.txt", "Deep/c.wav"})
      folder.write(name, wav({fmt({}), data(ByteBuffer(8))}));
    window.show();
  }

  OpenPanel& open() {
    window.controller().openDocument();
    auto* panel = window.findChild<OpenPanel*>();
    panel->setDirectory(QString::fromStdString(folder.path().native()));
    return *panel;
  }

  static QListView& list(OpenPanel& panel) { return *panel.findChild<QListView*>("listView"); }

  QModelIndex entry(OpenPanel& panel, const char* name) {
    QAbstractItemModel& model = *list(panel).model();
    const QModelIndex root = list(panel).rootIndex();
    for (int row = 0; row < model.rowCount(root); ++row)
      if (model.index(row, 0, root).data().toString() == QLatin1String(name))
        return model.index(row, 0, root);
    return {};
  }

  bool shows(OpenPanel& panel, const char* name) { return entry(panel, name).isValid(); }

  void waitFor(OpenPanel& panel, const char* name) {
    ASSERT_TRUE(QTest::qWaitFor([&] { return shows(panel, name); }, patience)) << name;
  }

  void select(OpenPanel& panel, const char* name) {
    waitFor(panel, name);
    list(panel).selectionModel()->select(entry(panel, name),
                                         QItemSelectionModel::Select | QItemSelectionModel::Rows);
  }

  static QPushButton& confirmButton(OpenPanel& panel) {
    return *panel.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Open);
  }

  QString log() { return window.controller().logView->toPlainText(); }
  void waitForEnd() {
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return window.controller().driver().totalFiles() == 0; }, patience));
  }

  TemporaryFolder folder;
  MainWindow window;
};

TEST_F(Panel, LooksAsASheetOfItsWindow) {
  OpenPanel& panel = open();
  EXPECT_EQ(panel.windowTitle(), "Choose WAV or AIFF Files");
  EXPECT_EQ(confirmButton(panel).text(), "Convert");
  EXPECT_EQ(panel.windowModality(), Qt::WindowModal);
  EXPECT_EQ(panel.parentWidget(), &window);
}

TEST_F(Panel, ShowsFoldersAndAudioFilesAndTheRestOnRequest) {
  OpenPanel& panel = open();
  waitFor(panel, "a.wav");
  EXPECT_TRUE(shows(panel, "B.AIF"));
  EXPECT_TRUE(shows(panel, "Deep"));
  EXPECT_FALSE(shows(panel, "notes.txt"));
  panel.selectNameFilter(panel.nameFilters().last());
  waitFor(panel, "notes.txt");
}

TEST_F(Panel, ConvertsFilesAndFoldersChosenTogether) {
  OpenPanel& panel = open();
  select(panel, "a.wav");
  select(panel, "Deep");
  ASSERT_TRUE(confirmButton(panel).isEnabled());
  QTest::mouseClick(&confirmButton(panel), Qt::LeftButton);
  EXPECT_EQ(window.controller().driver().totalFiles(), 2);
  waitForEnd();
  EXPECT_TRUE(fs::exists(folder / "a.aif") && fs::exists(folder / "Deep/c.aif"));
}

TEST_F(Panel, ConvertsAFolderAlone) {
  OpenPanel& panel = open();
  EXPECT_FALSE(confirmButton(panel).isEnabled());
  select(panel, "Deep");
  ASSERT_TRUE(confirmButton(panel).isEnabled());
  QTest::mouseClick(&confirmButton(panel), Qt::LeftButton);
  waitForEnd();
  EXPECT_TRUE(fs::exists(folder / "Deep/c.aif"));
  EXPECT_FALSE(fs::exists(folder / "a.aif"));
}

TEST_F(Panel, ConvertsTypedNames) {
  OpenPanel& panel = open();
  waitFor(panel, "a.wav");
  panel.findChild<QLineEdit*>("fileNameEdit")->setText("\"a.wav\" \"Deep\"");
  QTest::mouseClick(&confirmButton(panel), Qt::LeftButton);
  EXPECT_EQ(window.controller().driver().totalFiles(), 2);
  waitForEnd();
}

TEST_F(Panel, GoesIntoATypedFolder) {
  OpenPanel& panel = open();
  waitFor(panel, "a.wav");
  for (const auto& [typed, arrival] :
       {std::pair("Deep", folder / "Deep"), std::pair("..", folder.path())}) {
    auto& name = *panel.findChild<QLineEdit*>("fileNameEdit");
    name.setFocus();
    name.setText(typed);
    QTest::keyClick(&name, Qt::Key_Return);
    EXPECT_TRUE(panel.isVisible());
    EXPECT_EQ(panel.directory().absolutePath().toStdString(), arrival.native());
  }
}

TEST_F(Panel, CannotConfirmMissingFiles) {
  OpenPanel& panel = open();
  waitFor(panel, "a.wav");
  panel.findChild<QLineEdit*>("fileNameEdit")->setText("missing.wav");
  EXPECT_FALSE(confirmButton(panel).isEnabled());
}

TEST_F(Panel, DoesNothingWhenCancelledAndRemembersItsFolder) {
  OpenPanel& panel = open();
  select(panel, "a.wav");
  panel.reject();
  EXPECT_EQ(window.controller().driver().totalFiles(), 0);
  EXPECT_EQ(log(), "");
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  window.controller().openDocument();
  EXPECT_EQ(window.findChild<OpenPanel*>()->directory().absolutePath().toStdString(),
            folder.path().native());
}

}  // namespace
}  // namespace corvana::test
