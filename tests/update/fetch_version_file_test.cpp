#include "update/fetch_version_file.hpp"

#include <QSignalSpy>
#include <QTcpServer>
#include <QTest>
#include <QThread>
#include <algorithm>
#include <gtest/gtest.h>
#include <memory>

#include "platform/unicode.hpp"
#include "update/https_server.hpp"
#include "update/simple_encrypt_text.hpp"

namespace corvana {
namespace {

using namespace std::chrono_literals;
using test::httpAnswer;
using test::HttpsServer;

test::CertificateAuthority& authority() {
  static test::CertificateAuthority theAuthority;
  theAuthority.trustIt();
  return theAuthority;
}

/// One certificate for this machine serves most tests.
const QSslConfiguration& goodCertificate() {
  static const QSslConfiguration configuration = authority().issue("IP:127.0.0.1");
  return configuration;
}

QByteArray scrambled(std::u16string_view plain) {
  return QByteArray::fromStdString(utf8FromUtf16(simpleEncryptText(plain, true)));
}

const QByteArray goodBody = scrambled(u"$APP$:Corvana$VERMAC$ 1.1$URLINFO$ https://x/$");

struct Answer {
  int count = 0;
  std::int64_t number = 0;
  VantorErgebnis ergebnis;
  int status = -1;
};

class FetchVersionFile : public testing::Test {
 protected:
  DataTask* start(const QString& address, std::chrono::milliseconds deadline = 20s) {
    return fetchVersionFile(
        QUrl(address), u"Corvana", u"1.0", 7, &receiver_,
        [this](std::int64_t number, const VantorErgebnis& ergebnis, int status) {
          EXPECT_EQ(QThread::currentThread(), qApp->thread());
          answer_ = {answer_.count + 1, number, ergebnis, status};
        },
        deadline);
  }

  /// The answer, once the task has gone as well.
  Answer answerOf(QPointer<DataTask> task) {
    EXPECT_EQ(answer_.count, 0) << "delivered before the request was returned";
    EXPECT_TRUE(QTest::qWaitFor([&] { return answer_.count > 0 && !task; }, 30000));
    EXPECT_EQ(answer_.count, 1);
    EXPECT_EQ(answer_.number, 7);
    return answer_;
  }

  Answer fetch(const QString& address) { return answerOf(start(address)); }

  QObject receiver_;
  Answer answer_;
};

TEST_F(FetchVersionFile, AsksForNothingButTheFile) {
  const HttpsServer server(goodCertificate(), [](auto&) {
    return httpAnswer(goodBody, "200 OK", "Set-Cookie: a=b\r\n");
  });
  for (int i = 0; i < 2; ++i) {
    answer_ = {};
    const Answer answer = fetch(server.address());
    EXPECT_EQ(answer.status, 200);
    EXPECT_TRUE(answer.ergebnis.neueVersionVorhanden);
    EXPECT_EQ(answer.ergebnis.newAppVersion, u"1.1");
  }
  const QByteArray host = "host: 127.0.0.1:" + QByteArray::number(server.serverPort());
  const QByteArrayList expected = {"",
                                   "",
                                   "accept-encoding: identity",
                                   "accept-language: *",
                                   "connection: keep-alive",
                                   "get /resources/downloadversion.txt http/1.1",
                                   host,
                                   "user-agent: mozilla/5.0"};
  ASSERT_EQ(server.requests().size(), 2);
  for (const QByteArray& request : server.requests()) {
    QByteArrayList lines = request.toLower().replace('\r', "").split('\n');
    std::sort(lines.begin(), lines.end());
    EXPECT_EQ(lines, expected) << request.toStdString();
  }
}

struct AnswerCase {
  const char* what;
  QByteArray answer;
  int status;
  bool hasNewVersion;
};

TEST_F(FetchVersionFile, TakesOrRefusesAnswers) {
  const QByteArray padding(qsizetype{largestVersionFile} - goodBody.size(), '~');
  const AnswerCase cases[] = {
      {"a status other than 200 is read all the same", httpAnswer(goodBody, "404 Not Found"), 404,
       true},
      {"so are these", httpAnswer(goodBody, "400 Bad Request"), 400, true},
      {"", httpAnswer(goodBody, "401 Unauthorized"), 401, true},
      {"", httpAnswer(goodBody, "503 Unavailable"), 503, true},
      {"an empty body", httpAnswer(""), 200, false},
      {"not scrambled", httpAnswer("<html>Corvana</html>"), 200, false},
      {"not UTF-8", httpAnswer(goodBody + "\xFF"), 200, false},
      {"a byte-order mark", httpAnswer("\xEF\xBB\xBF" + goodBody), 200, false},
      {"without a length", "HTTP/1.1 200 OK\r\n\r\n" + goodBody, 200, true},
      {"the largest body", httpAnswer(goodBody + padding), 200, true},
      {"one byte more", httpAnswer(goodBody + padding + "~"), 200, false},
      {"2 MiB, without a length", "HTTP/1.1 200 OK\r\n\r\n" + goodBody + padding + padding, 200,
       false},
      {"cut off", httpAnswer(goodBody + "~").chopped(1), 200, false},
      {"cut off, with another status", httpAnswer(goodBody + "~", "404 Not Found").chopped(1), 404,
       false},
      {"compressed unasked", httpAnswer(goodBody, "200 OK", "Content-Encoding: gzip\r\n"), 200,
       true},
      {"not HTTP", "Corvana\r\n\r\n", 0, false},
  };
  for (const AnswerCase& c : cases) {
    SCOPED_TRACE(c.what);
    answer_ = {};
    const HttpsServer server(goodCertificate(), [&](auto&) { return c.answer; });
    const Answer answer = fetch(server.address());
    EXPECT_EQ(answer.status, c.status);
    EXPECT_EQ(answer.ergebnis.neueVersionVorhanden, c.hasNewVersion);
  }
}

TEST_F(FetchVersionFile, FollowsRedirectsToHttpsOnly) {
  QTcpServer plainServer;
  ASSERT_TRUE(plainServer.listen(QHostAddress::LocalHost));
  const QSignalSpy plainConnections(&plainServer, &QTcpServer::newConnection);
  const QByteArray plainAddress =
      "http://127.0.0.1:" + QByteArray::number(plainServer.serverPort()) + "/";
  const struct {
    QByteArray location;
    int status;
    bool hasNewVersion;
  } cases[] = {
      {"/file", 200, true},
      {plainAddress, 302, false},
      {"file:///etc/hosts", 302, false},
      {"/start", 302, false},  // round and round
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.location.toStdString());
    answer_ = {};
    const HttpsServer server(goodCertificate(), [&](const QByteArray& path) {
      return path == "/file" ? httpAnswer(goodBody)
                             : httpAnswer("", "302 Found",
                                          "Set-Cookie: a=b\r\nLocation: " + c.location + "\r\n");
    });
    const Answer answer = fetch(server.address("/start"));
    EXPECT_EQ(answer.status, c.status);
    EXPECT_EQ(answer.ergebnis.neueVersionVorhanden, c.hasNewVersion);
    for (const QByteArray& request : server.requests())
      EXPECT_FALSE(request.contains("Cookie")) << request.toStdString();
  }
  EXPECT_TRUE(plainConnections.isEmpty());
}

TEST_F(FetchVersionFile, RefusesWrongCertificates) {
  test::CertificateAuthority stranger;
  for (const QSslConfiguration& certificate :
       {authority().issue("DNS:www.corvana.example"), stranger.issue("IP:127.0.0.1")}) {
    answer_ = {};
    const HttpsServer server(certificate, [](auto&) { return httpAnswer(goodBody); });
    const Answer answer = fetch(server.address());
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.ergebnis, VantorErgebnis());
    EXPECT_TRUE(server.requests().isEmpty());
  }
}

TEST_F(FetchVersionFile, EndsAtTheDeadline) {
  const struct {
    QByteArray answer;
    int status;
  } cases[] = {{"", 0}, {httpAnswer(goodBody + QByteArray(2000, '~')), 200}};
  for (const auto& c : cases) {
    answer_ = {};
    QTimer trickle;  // an answer that never ends, though it never pauses either
    HttpsServer server(goodCertificate(), [&](auto&) { return QByteArray(); });
    QObject::connect(&trickle, &QTimer::timeout, &server, [&, sent = qsizetype{0}]() mutable {
      auto* socket = server.findChild<QTcpSocket*>();
      if (socket == nullptr || server.requests().isEmpty()) return;
      socket->write(c.answer.mid(sent, 4));
      sent += 4;
    });
    trickle.start(20ms);
    const Answer answer = answerOf(start(server.address(), 1s));
    EXPECT_EQ(answer.status, c.status);
    EXPECT_EQ(answer.ergebnis, VantorErgebnis());
    EXPECT_EQ(server.requests().size(), 1);
  }
}

TEST_F(FetchVersionFile, NoServerIsNoAnswer) {
  QTcpServer closed;
  ASSERT_TRUE(closed.listen(QHostAddress::LocalHost));
  const QString address = QStringLiteral("https://127.0.0.1:%1/").arg(closed.serverPort());
  closed.close();
  const Answer answer = fetch(address);
  EXPECT_EQ(answer.status, 0);
  EXPECT_EQ(answer.ergebnis, VantorErgebnis());
}

TEST_F(FetchVersionFile, CancelledRequestStillCompletes) {
  HttpsServer server(goodCertificate(), [](auto&) { return QByteArray(); });
  const QPointer<DataTask> task = start(server.address());
  ASSERT_TRUE(QTest::qWaitFor([&] { return server.requests().size() == 1; }, 20000));
  task->cancel();
  task->cancel();
  const Answer answer = answerOf(task);
  EXPECT_EQ(answer.status, 0);
  EXPECT_EQ(answer.ergebnis, VantorErgebnis());
  EXPECT_TRUE(QTest::qWaitFor([&] { return server.hungUp() == 1; }, 20000));
}

TEST_F(FetchVersionFile, AnswerForAReceiverThatIsGoneIsDropped) {
  HttpsServer server(goodCertificate(), [](auto&) { return httpAnswer(goodBody); });
  auto receiver = std::make_unique<QObject>();
  bool isAnswered = false;
  const auto answer = [&](auto...) { isAnswered = true; };
  fetchVersionFile(QUrl(server.address()), u"Corvana", u"1.0", 1, receiver.get(), answer);
  ASSERT_TRUE(QTest::qWaitFor([&] { return !server.requests().isEmpty(); }, 20000));
  receiver.reset();
  fetch(server.address());  // a later answer has come, so the earlier one is not on its way
  EXPECT_FALSE(isAnswered);
}

}  // namespace
}  // namespace corvana
