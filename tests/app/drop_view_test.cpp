#include "app/drop_view.hpp"

#include <QImage>
#include <gtest/gtest.h>
#include <string>

#include "app/drags.hpp"

namespace corvana::test {
namespace {

namespace fs = std::filesystem;

struct Receiver : DropViewDelegate {
  void filesDropped(const std::vector<fs::path>& urls) override { received.push_back(urls); }
  std::vector<std::vector<fs::path>> received;
};

TEST(DropView, TakesDragsThatCarryFiles) {
  struct Case {
    const char* what;
    const char* uris;
    std::vector<fs::path> urls;
  };
  const std::string here = "file://" + QSysInfo::machineHostName().toStdString() + "/tmp/a.wav";
  for (const Case& test : {
           Case{"folder", "file:///tmp/Samples/", {"/tmp/Samples/"}},
           Case{"several, in their order", "file:///b\r\nfile:///a\r\n", {"/b", "/a"}},
           Case{"spaces, percent, hash", "file:///a%20b%25%23.wav", {"/a b%#.wav"}},
           Case{"not UTF-8", "file:///Fl%F6te.wav", {"/Fl\xF6te.wav"}},
           Case{"with the name of this machine", here.c_str(), {"/tmp/a.wav"}},
           Case{"files among other things", "https://a.example/x.wav\r\nfile:///x.wav", {"/x.wav"}},
           Case{"web address", "https://a.example/x.wav", {}},
           Case{"file of another machine", "file://far.example/x.wav", {}},
           Case{"nothing", "", {}},
       }) {
    SCOPED_TRACE(test.what);
    DropView view;
    Receiver receiver;
    view.delegate = &receiver;
    QMimeData data;
    data.setData("text/uri-list", test.uris);

    const bool carriesFiles = !test.urls.empty();
    EXPECT_EQ(enter(view, data), carriesFiles);
    EXPECT_EQ(view.isHighlighted(), carriesFiles);
    QDragLeaveEvent leave;
    QApplication::sendEvent(&view, &leave);
    EXPECT_FALSE(view.isHighlighted());

    enter(view, data);
    EXPECT_EQ(drop(view, data), carriesFiles);
    EXPECT_FALSE(view.isHighlighted());
    EXPECT_TRUE(receiver.received.empty()) << "the other program still waits";
    QCoreApplication::processEvents();
    const std::vector<std::vector<fs::path>> expected(carriesFiles ? 1 : 0, test.urls);
    EXPECT_EQ(receiver.received, expected);
  }
}

TEST(DropView, RefusesTextImagesAndMoves) {
  DropView view;
  QMimeData other;
  other.setText("file:///tmp/a.wav");
  other.setImageData(QImage(4, 4, QImage::Format_RGB32));
  EXPECT_FALSE(enter(view, other));
  QMimeData file;
  file.setUrls({QUrl("file:///tmp/a.wav")});
  EXPECT_FALSE(enter(view, file, Qt::MoveAction)) << "the other program would delete the file";
  EXPECT_FALSE(view.isHighlighted());
}

TEST(DropView, OutlivesItsDelegate) {
  DropView view;
  auto receiver = std::make_unique<Receiver>();
  view.delegate = receiver.get();
  dragAndDrop(view, {"/tmp/a.wav"});
  receiver.reset();
  QCoreApplication::processEvents();
}

TEST(DropView, DrawsItsFrameAndTintInTheColoursOfTheTheme) {
  DropView view;
  view.resize(200, 100);
  QPalette theme(Qt::black, Qt::black);
  theme.setColor(QPalette::PlaceholderText, Qt::green);
  theme.setColor(QPalette::Highlight, Qt::red);
  view.setPalette(theme);
  const QImage resting = view.grab().toImage();
  EXPECT_EQ(resting.pixelColor(100, 50), QColor(Qt::black));
  const auto inFrame = [&](int x) { return resting.pixelColor(x, DropView::inset).green() > 0; };
  EXPECT_TRUE(inFrame(20) || inFrame(26)) << "dashed";
  QMimeData data;
  data.setUrls({QUrl("file:///tmp/a.wav")});
  enter(view, data);
  EXPECT_GT(view.grab().toImage().pixelColor(100, 50).red(), 0);
}

}  // namespace
}  // namespace corvana::test
