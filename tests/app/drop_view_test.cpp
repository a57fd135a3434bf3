#include "app/drop_view.hpp"

#include <QImage>
#include <gtest/gtest.h>

#include "app/drags.hpp"
#include "app/quiet_colour.hpp"

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

TEST(DropView, TakesDropsForItsWindowAndSeesASourceDie) {
  QWidget window;
  auto* view = new DropView(&window);
  Receiver receiver;
  view->delegate = &receiver;
  view->takeDropsOn(window);
  window.show();
  QMimeData files;
  files.setUrls({QUrl("file:///tmp/a.wav")});
  EXPECT_TRUE(enter(window, files));
  EXPECT_TRUE(view->isHighlighted());
  QEnterEvent pointerIsFree({}, {}, {});
  QApplication::sendEvent(window.windowHandle(), &pointerIsFree);
  EXPECT_FALSE(view->isHighlighted());
  EXPECT_TRUE(drop(window, files)) << "the next drag begins with a movement";
  QCoreApplication::processEvents();
  EXPECT_EQ(receiver.received.size(), 1U);
}

TEST(DropView, CanBeSeenInEveryTheme) {
  const QColor faint(0, 0, 0,
                     128);  // what some desktops have as placeholder colour on every ground
  const struct {
    QColor ground, text, placeholder, highlight;
  } themes[] = {{Qt::white, Qt::black, faint, Qt::blue},
                {{0x2b, 0x2d, 0x30}, {0xe4, 0xe4, 0xe6}, faint, {0x3d, 0x7a, 0xb8}},
                {Qt::black, Qt::white, Qt::black, Qt::yellow},
                {Qt::gray, Qt::black, Qt::gray, Qt::darkGray},
                {Qt::black, Qt::white, Qt::green, Qt::red}};
  for (const auto& [ground, text, placeholder, highlight] : themes) {
    SCOPED_TRACE(ground.name().toStdString() + placeholder.name().toStdString());
    QPalette theme(ground, ground);
    theme.setColor(QPalette::WindowText, text);
    theme.setColor(QPalette::PlaceholderText, placeholder);
    theme.setColor(QPalette::Highlight, highlight);
    DropView view;
    view.resize(200, 100);
    view.setPalette(theme);
    const auto frameContrast = [](const QImage& picture, QPoint beside) {
      double best = 1;  // of a dash or a gap
      for (int x = 20; x < 40; ++x)
        best = std::max(
            best, contrast(picture.pixelColor(x, DropView::inset), picture.pixelColor(beside)));
      return best;
    };
    const QImage resting = view.grab().toImage();
    EXPECT_GE(frameContrast(resting, {100, 50}), 3);
    QMimeData data;
    data.setUrls({QUrl("file:///tmp/a.wav")});
    EXPECT_FALSE(enter(view, data, Qt::MoveAction)) << "the other program would delete the file";
    EXPECT_EQ(view.grab().toImage(), resting);
    enter(view, data);
    const QImage highlighted = view.grab().toImage();
    EXPECT_NE(highlighted.pixelColor(100, 50), ground);
    EXPECT_GE(frameContrast(highlighted, {100, 50}), 3);
    EXPECT_GE(frameContrast(highlighted, {100, 1}), 3);
  }
}

}  // namespace
}  // namespace corvana::test
