// Answers that are made to freeze the program or to eat its memory.

#include <QElapsedTimer>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <algorithm>
#include <gtest/gtest.h>

#include "update_window/fetch_version_file.hpp"
#include "update_window/https_server.hpp"
#include "update_window/spinning_wheel.hpp"
#include "update_window/vantor_window_controller.hpp"

namespace corvana::test {
namespace {

using namespace std::chrono_literals;

/// Milliseconds; wide, for slow machines and instrumented builds.
constexpr qint64 longestStall = 2000;

/// The longest time for which the event loop stood still.
class StallWatch {
 public:
  StallWatch() {
    QObject::connect(&tick_, &QTimer::timeout, &tick_, [this] { note(); });
    sinceTick_.start();
    tick_.start(1ms);
  }
  qint64 longest() { return note(), longest_; }

 private:
  void note() { longest_ = std::max(longest_, sinceTick_.restart()); }

  QTimer tick_;
  QElapsedTimer sinceTick_;
  qint64 longest_ = 0;
};

std::u16string repeated(std::u16string_view text, std::size_t size) {
  std::u16string result;
  while (result.size() < size)
    result += text;
  return result;
}

TEST(HostileVersionFile, NeitherFreezesTheWindowNorFillsIt) {
  const auto file = [](const std::u16string& version, const std::u16string& rest) {
    return u"$APP$:Corvana$VERMAC$ " + version + u"$" + rest + u"$";
  };
  const std::u16string phrase = u"https://www.corvana.example/resources/downloads/";
  const struct {
    const char* what;
    std::u16string plain;
    bool isRead = true;
  } cases[] = {
      {"one word", file(u"2.0", u"INFOMAC$ " + repeated(u"l", 520000))},
      {"lines", file(u"2.0", u"INFOMAC$ l" + repeated(u"#+#", 600000) + u"l")},
      {"control characters", file(u"2.0", u"INFOMAC$ " + repeated(u"l\t\x1\v", 500000))},
      {"many records", repeated(file(u"2.0", u""), 700000)},
      {"version", file(repeated(u".", 500000) + u"20000", u"")},
      {"addresses", file(u"2.0", u"URLINFO$ https://" + repeated(u"l", 250000) +
                                     u"$URLMAC$ ftp://" + repeated(u"<", 250000))},
      {"phrases", file(u"2.0", u"INFOMAC$ " + repeated(phrase, 1900000))},
      {"more phrases", file(u"2.0", u"INFOMAC$ " + repeated(phrase, 8000000)), false},
  };
  const QSslConfiguration& configuration = trustedCertificate();
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const QByteArray body = scrambled(c.plain);
    EXPECT_LE(body.size(), maxVersionFileSize);
    const HttpsServer server([answer = httpAnswer(body)](auto&) { return answer; }, configuration);
    VantorWindowController window;
    window.startUpdateCheck("Corvana", "1.0", server.address());
    StallWatch watch;
    const auto* wheel = window.findChild<SpinningWheel*>();
    ASSERT_TRUE(QTest::qWaitFor([&] { return wheel->isHidden(); }, 30000));
    QTest::qWait(50);  // for the picture
    EXPECT_LT(watch.longest(), longestStall);
    EXPECT_EQ(window.findChild<QLabel*>("lblReleaseNotes")->text().isEmpty(), !c.isRead);
    EXPECT_LT(window.findChild<QPlainTextEdit*>()->toPlainText().size(), 25000);
    for (const auto* label : window.findChildren<QLabel*>())
      EXPECT_LE(label->sizeHint().width(), label->width()) << label->text().toStdString();
    for (const auto* button : window.findChildren<QPushButton*>())
      EXPECT_LT(button->toolTip().size(), 4000);
  }
}

TEST(HostileServer, IsCutOffWhereTheToolkitSetsNoLimit) {
  const struct {
    const char* what;
    QByteArray beginning;
    QByteArray endless = "a";
  } cases[] = {
      {"status line", "HTTP/1.1 200 "},
      {"header", "HTTP/1.1 200 OK\r\nX: "},
      {"headers", "HTTP/1.1 200 OK\r\n", "X: a\r\n"},
      {"chunk line", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n1;"},
      {"interim answers", "", "HTTP/1.1 100 Continue\r\n\r\n"},
      {"refusal", "HTTP/1.1 401 No\r\nWWW-Authenticate: Basic realm=a\r\n\r\n"},
  };
  const QSslConfiguration& configuration = trustedCertificate();
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    HttpsServer server([](auto&) { return QByteArray(); }, configuration);
    qint64 sent = 0;
    QTimer feeder;
    QObject::connect(&feeder, &QTimer::timeout, &server, [&] {
      auto* socket = server.findChild<QTcpSocket*>();
      if (socket == nullptr || server.requests.isEmpty() || socket->bytesToWrite() > 1000000)
        return;
      sent += socket->write(sent == 0 ? c.beginning : QByteArray()) +
              socket->write(c.endless.repeated(200000 / c.endless.size()));
    });
    feeder.start(0ms);
    QObject receiver;
    bool isAnswered = false;
    StallWatch watch;
    fetchVersionFile(
        server.address(), u"Corvana", u"1.0", 1, &receiver,
        [&](auto, const VantorErgebnis& ergebnis, int) {
          isAnswered = true;
          EXPECT_EQ(ergebnis, VantorErgebnis());
        },
        20s);
    ASSERT_TRUE(QTest::qWaitFor([&] { return isAnswered; }, 30000));
    EXPECT_LT(watch.longest(), longestStall);
    EXPECT_GT(sent, maxBytesReceived);
    EXPECT_LT(sent, 6 * maxBytesReceived);
  }
}

}  // namespace
}  // namespace corvana::test
