#include "app/drop_view.hpp"

#include <QImage>
#include <gtest/gtest.h>

#include "app/drags.hpp"

namespace corvana::test {
namespace {

namespace fs = std::filesystem;

struct Receiver : DropViewDelegate {
  void filesDropped(const std::vector<fs::path>& urls) override { received.push_back(urls); }
  std::vector<std::vector<fs::path>> received;
};

TEST(DropView, TakesDragsThatCarryFiles) {
  const std::string here = "file://" + QSysInfo::machineHostName().toStdString() + "/tmp/a.wav";
  const std::pair<std::string, std::vector<fs::path>> cases[] = {
      {"file:///b/\r\nfile:///a\r\n", {"/b/", "/a"}},
      {"file:///a%20b%25%23.wav", {"/a b%#.wav"}},
      {"file:///Fl%F6te.wav", {"/Fl\xF6te.wav"}},
      {here, {"/tmp/a.wav"}},
      {"https://a.example/x.wav\r\nfile:///x.wav", {"/x.wav"}},
      {"https://a.example/x.wav", {}},
      {"file://far.example/x.wav", {}},
  };
  for (const auto& [uris, urls] : cases) {
    SCOPED_TRACE(uris);
    DropView view;
    Receiver receiver;
    view.delegate = &receiver;
    QMimeData data;
    data.setData("text/uri-list", uris.c_str());

    const bool carriesFiles = !urls.empty();
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
    const std::vector<std::vector<fs::path>> expected(carriesFiles ? 1 : 0, urls);
    EXPECT_EQ(receiver.received, expected);
  }
}

TEST(DropView, OutlivesItsDelegate) {
  DropView view;
  auto receiver = std::make_unique<Receiver>();
  view.delegate = receiver.get();
  dragAndDrop(view, {"/tmp/a.wav"});
  receiver.reset();
  QCoreApplication::processEvents();
}

TEST(DropView, DrawsItsFrameAndTheTintOfADragItTakes) {
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
  EXPECT_FALSE(enter(view, data, Qt::MoveAction)) << "the other program would delete the file";
  EXPECT_EQ(view.grab().toImage(), resting);
  enter(view, data);
  EXPECT_GT(view.grab().toImage().pixelColor(100, 50).red(), 0);
}

}  // namespace
}  // namespace corvana::test
