// What the window cannot show of its requests.

#include "update_window/fetch_version_file.hpp"

#include <QTest>
#include <QThread>
#include <algorithm>
#include <gtest/gtest.h>

#include "update_window/https_server.hpp"

namespace corvana::test {
namespace {

using namespace std::chrono_literals;

const QByteArray goodBody = scrambled(u"$APP$:Corvana$VERMAC$ 1.1$URLINFO$ https://x/$");

class FetchVersionFile : public testing::Test {
 protected:
  DataTask* start(const HttpsServer& server, std::chrono::milliseconds deadline = 20s) {
    answers_ = 0;
    const auto parse = [](const std::optional<std::u16string>& text) {
      EXPECT_NE(QThread::currentThread(), qApp->thread());
      return parseVersionFile(text, u"Corvana", u"1.0");
    };
    const auto deliver = [this](const VantorErgebnis& ergebnis, int status) {
      EXPECT_EQ(QThread::currentThread(), qApp->thread());
      ++answers_;
      isNewer_ = ergebnis.neueVersionVorhanden;
      status_ = status;
    };
    return new DataTask(server.address(), deadline, parse, deliver, &receiver_);
  }

  /// Waits for the answer, and until the task has gone as well.
  void expectAnswer(QPointer<DataTask> task, int status, bool isNewer) {
    EXPECT_EQ(answers_, 0) << "delivered before the request was returned";
    EXPECT_TRUE(QTest::qWaitFor([&] { return answers_ > 0 && !task; }, 30000));
    EXPECT_EQ(answers_, 1);
    EXPECT_EQ(status_, status);
    EXPECT_EQ(isNewer_, isNewer);
  }

  QObject receiver_;
  int answers_ = 0;
  bool isNewer_ = false;
  int status_ = -1;
};

TEST_F(FetchVersionFile, AsksForNothingButTheFile) {
  const HttpsServer server(
      [](auto&) { return httpAnswer(goodBody, "200 OK", "Set-Cookie: a=b\r\n"); });
  for (int i = 0; i < 2; ++i)
    expectAnswer(start(server), 200, true);
  const QByteArray expected =
      "||accept-encoding: identity|accept-language: *|connection: keep-alive|"
      "get /resources/downloadversion.txt http/1.1|host: 127.0.0.1:" +
      QByteArray::number(server.serverPort()) + "|user-agent: mozilla/5.0";
  ASSERT_EQ(server.requests.size(), 2);
  for (const QByteArray& request : server.requests) {
    QByteArrayList lines = request.toLower().replace('\r', "").split('\n');
    std::sort(lines.begin(), lines.end());
    EXPECT_EQ(lines.join('|').toStdString(), expected.toStdString());
  }
}

TEST_F(FetchVersionFile, TakesOrRefusesAnswers) {
  const QByteArray largest = goodBody.leftJustified(qsizetype{maxVersionFileSize}, '~');
  const QByteArray unlimited = "HTTP/1.1 200 OK\r\n\r\n";
  QTcpServer plainServer;
  ASSERT_TRUE(plainServer.listen(QHostAddress::LocalHost));
  const QByteArray toPlainServer =
      "Location: http://127.0.0.1:" + QByteArray::number(plainServer.serverPort()) + "/\r\n";
  const struct {
    const char* what;
    QByteArray answer;
    int status;
    bool isNewer;
    bool isTrusted = true;
  } cases[] = {
      {"client's fault", httpAnswer(goodBody, "401 No"), 401, true},
      {"not UTF-8 at its end", httpAnswer(goodBody + "\xFF"), 200, false},
      {"without a length", unlimited + goodBody, 200, true},
      {"the largest body", httpAnswer(largest), 200, true},
      {"one byte more without a length", unlimited + largest + "~", 200, false},
      {"cut off", httpAnswer(goodBody + "~").chopped(1), 200, false},
      {"cut off with 404", httpAnswer(goodBody + "~", "404 No").chopped(1), 404, false},
      {"compressed", httpAnswer(goodBody, "200 OK", "Content-Encoding: gzip\r\n"), 200, true},
      {"not HTTP", "Corvana\r\n\r\n", 0, false},
      {"redirect", httpAnswer("", "302 Found", "Set-Cookie: a=b\r\nLocation: /x\r\n"), 200, true},
      {"to plain HTTP", httpAnswer("", "301 Moved", toPlainServer), 301, false},
      {"stranger", httpAnswer(goodBody), 0, false, false},
      {"endless redirects", httpAnswer("", "302 Found", "Location: ?\r\n"), 302, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const HttpsServer server(
        [&](const QByteArray& path) { return path == "/x" ? httpAnswer(goodBody) : c.answer; },
        c.isTrusted ? trustedCertificate() : newCertificate());
    expectAnswer(start(server), c.status, c.isNewer);
    for (const QByteArray& request : server.requests)
      EXPECT_FALSE(request.contains("Cookie"));
  }
  EXPECT_FALSE(plainServer.hasPendingConnections());
}

TEST_F(FetchVersionFile, EndsAtTheDeadline) {
  const HttpsServer server([](auto&) { return QByteArray(); });
  expectAnswer(start(server, 1s), 0, false);
}

}  // namespace
}  // namespace corvana::test
