#include "app/open_panel.hpp"

#include <QDialogButtonBox>
#include <QMessageBox>
#include <QTest>
#include <QToolButton>
#include <gtest/gtest.h>

#include "app/main_window.hpp"
#include "app/places.hpp"
#include "support/audio_builder.hpp"
#include "support/temporary_folder.hpp"

namespace corvana::test {
namespace {

constexpr int patience = 20'000;  // ms

class Panel : public testing::Test {
 protected:
  Panel() {
    for (const char* file : {"a.wav", "B.AIF", "notes.txt", "Deep/c.wav", "5\" tom.wav"})
      folder.write(file, wav({fmt({}), data(ByteBuffer(8))}));
    panel.setDirectory(folder.path().c_str());
    EXPECT_TRUE(waitFor("a.wav") && waitFor("Deep"));
  }

  OpenPanel& open() {
    window.show();
    window.controller().openDocument();
    return *window.findChild<OpenPanel*>();
  }

  QPushButton& confirmButton() {
    QAbstractButton* button = nullptr;
    auto& box = *panel.findChild<QDialogButtonBox*>();
    for (QAbstractButton* candidate : box.buttons())
      if (box.buttonRole(candidate) == QDialogButtonBox::AcceptRole) button = candidate;
    return *qobject_cast<QPushButton*>(button);
  }

  QModelIndex entry(const char* file) {
    const QModelIndex first = list.model()->index(0, 0, list.rootIndex());
    return list.model()->match(first, Qt::DisplayRole, file, 1, Qt::MatchExactly).value(0);
  }

  bool waitFor(const char* file) {
    return QTest::qWaitFor([&] { return entry(file).isValid(); }, patience);
  }

  void click(const char* file, Qt::KeyboardModifiers keys = {}) {
    list.setFocus();
    list.scrollTo(entry(file));
    QTest::mouseClick(list.viewport(), Qt::LeftButton, keys, list.visualRect(entry(file)).center());
  }

  void type(const QString& text) {
    name.setFocus();
    name.selectAll();
    QTest::keyClick(&name, Qt::Key_Delete);
    QTest::keyClicks(&name, text);
  }

  std::vector<std::string> chosen() {
    EXPECT_EQ(confirm.text(), "Convert");
    std::vector<std::string> names;
    for (const fs::path& path : panel.chosenURLs())
      names.push_back(path.lexically_relative(folder.path()));
    EXPECT_EQ(confirm.isEnabled(), !names.empty());
    return names;
  }

  TemporaryFolder folder;
  MainWindow window;
  OpenPanel& panel = open();
  QListView& list = *panel.findChild<QListView*>("listView");
  QLineEdit& name = *panel.findChild<QLineEdit*>("fileNameEdit");
  QPushButton& confirm = confirmButton();
};

using Names = std::vector<std::string>;

TEST_F(Panel, ShowsFoldersAndAudioFilesAndTheRestOnRequest) {
  EXPECT_EQ(panel.windowModality(), Qt::WindowModal);
  EXPECT_EQ(chosen(), Names());
  EXPECT_TRUE(entry("B.AIF").isValid() && !entry("notes.txt").isValid());
  panel.selectNameFilter(panel.nameFilters().last());
  EXPECT_TRUE(waitFor("notes.txt"));
}

TEST_F(Panel, ConvertsExactlyWhatIsSelected) {
  type((folder / "Deep/c.wav").c_str());
  click("a.wav", Qt::ControlModifier);
  EXPECT_EQ(chosen(), Names{"a.wav"}) << "not what was typed before";
  click("Deep");
  EXPECT_EQ(name.text(), "") << "nor the file before it";
  EXPECT_EQ(chosen(), Names{"Deep"});
  click("5\" tom.wav", Qt::ControlModifier);
  EXPECT_EQ(chosen().size(), 2U);
  QTest::mouseClick(&confirm, Qt::LeftButton);
  const auto totalFiles = [&] { return window.controller().driver().totalFiles(); };
  EXPECT_EQ(totalFiles(), 2);
  EXPECT_TRUE(QTest::qWaitFor([&] { return totalFiles() == 0; }, patience));
  EXPECT_TRUE(fs::exists(folder / "Deep/c.aif") && fs::exists(folder / "5\" tom.aif"));
}

TEST_F(Panel, ConvertsTypedFilesAndGoesIntoTypedFolders) {
  const struct {
    QString typed;
    Names chosen;
    const char* entered = ".";
  } cases[] = {
      {"a.wav", {"a.wav"}},
      {(folder / "Deep/c.wav").c_str(), {"Deep/c.wav"}},
      {"\"a.wav\" \"B.AIF\"", {"a.wav", "B.AIF"}},
      {"5\" tom.wav", {"5\" tom.wav"}},
      {"\"a.wav\" \"missing.wav\"", {}},
      {"Deep", {}, "Deep"},
      {"Deep/", {}, "Deep"},
      {"\"a.wav\" \"Deep\"", {}, "Deep"},
      {(folder / "Deep").c_str(), {}, "Deep"},
      {"Deep/..", {}, "."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.typed.toStdString());
    panel.setDirectory(folder.path().c_str());
    click("Deep");
    type(c.typed);
    EXPECT_EQ(chosen(), c.chosen);
    if (c.chosen.empty()) QTest::keyClick(&name, Qt::Key_Return);
    EXPECT_EQ(panel.directory().absolutePath().toStdString(),
              fs::weakly_canonical(folder / c.entered));
    for (auto* message : panel.findChildren<QMessageBox*>())
      message->close();
  }
  type("c.wav");
  EXPECT_EQ(chosen(), Names());
  panel.setDirectory((folder / "Deep").c_str());
  EXPECT_EQ(chosen(), Names{"Deep/c.wav"});
}

TEST_F(Panel, StartsWhereTheLastOneWas) {
  click("Deep");
  QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, list.visualRect(entry("Deep")).center());
  EXPECT_EQ(chosen(), Names());
  panel.reject();
  EXPECT_EQ(window.controller().driver().totalFiles(), 0);
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(open().directory().absolutePath().toStdString(), folder / "Deep");
}

TEST_F(Panel, ChangesNothingOnTheDisk) {
  EXPECT_FALSE(panel.findChild<QToolButton*>("newFolderButton")->isVisible());
  const std::vector<std::string> files = folder.files();
  click("a.wav");
  for (const Qt::Key key : {Qt::Key_F2, Qt::Key_Delete})
    QTest::keyClick(&list, key);
  EXPECT_EQ(list.viewport()->findChild<QLineEdit*>(), nullptr) << "for another name";
  for (const char* action : {"qt_rename_action", "qt_delete_action"})
    EXPECT_FALSE(panel.findChild<QAction*>(action)->isVisible());
  EXPECT_EQ(folder.files(), files);
}

TEST(Places, AreTheUsersDrives) {
  const QByteArray mounts =
      "/dev/sda1 / ext4 rw 0 0\ntmpfs /run/user/0 tmpfs rw 0 0\n/dev/sdc1 /mediathek ext4 rw 0 0\n"
      "/dev/sdb1 /media/me/My\\040Samples vfat rw 0 0\nsystemd-1 /mnt/nas autofs rw 0 0\n"
      "/dev/sdb1 /media/me/My\\040Samples vfat rw 0 0\n//nas/a /mnt cifs rw 0 0\n";
  const QList<QUrl> drives{QUrl("file:///media/me/My%20Samples"), QUrl("file:///mnt")};
  EXPECT_EQ(usersDrives(mounts), drives);
  EXPECT_TRUE(usersPlaces().contains(QUrl::fromLocalFile(QDir::homePath())));
}

}  // namespace
}  // namespace corvana::test
