// A web server with a certificate of its own, on this machine.
#pragma once

#include <QFile>
#include <QProcess>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QSslSocket>
#include <QTemporaryDir>
#include <functional>
#include <gtest/gtest.h>
#include <utility>

#include "update/simple_encrypt_text.hpp"
#include "vocabulary/unicode.hpp"

namespace corvana::test {

/// A server's configuration with a new certificate, made with the openssl program.
inline QSslConfiguration newCertificate() {
  const QTemporaryDir folder;
  QProcess process;
  process.setWorkingDirectory(folder.path());
  process.startCommand(
      "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 "
      "-subj /CN=Server -addext subjectAltName=IP:127.0.0.1 -keyout key.pem -out server.pem");
  EXPECT_TRUE(process.waitForFinished() && process.exitCode() == 0)
      << "the openssl program is needed: " << process.readAllStandardError().toStdString();
  QFile key(folder.filePath("key.pem"));
  EXPECT_TRUE(key.open(QFile::ReadOnly));
  QSslConfiguration server;
  server.setLocalCertificateChain(QSslCertificate::fromPath(folder.filePath("server.pem")));
  server.setPrivateKey(QSslKey(&key, QSsl::Ec));
  return server;
}

/// With the one certificate that every request of this program trusts from now on.
inline const QSslConfiguration& trustedCertificate() {
  static const QSslConfiguration server = [] {
    const QSslConfiguration trusted = newCertificate();
    QSslConfiguration client = QSslConfiguration::defaultConfiguration();
    client.setCaCertificates(trusted.localCertificateChain());
    QSslConfiguration::setDefaultConfiguration(client);
    return trusted;
  }();
  return server;
}

/// Answers every request with what `answer` gives for its path, byte for byte, and hangs up.
/// An empty answer leaves the client waiting.
class HttpsServer : public QSslServer {
 public:
  using Answer = std::function<QByteArray(const QByteArray& path)>;

  explicit HttpsServer(Answer answer, const QSslConfiguration& server = trustedCertificate())
      : answer_(std::move(answer)) {
    setSslConfiguration(server);
    connect(this, &QTcpServer::pendingConnectionAvailable, this, &HttpsServer::accept);
    EXPECT_TRUE(listen(QHostAddress::LocalHost));
  }
  ~HttpsServer() override {
    for (QSslSocket* socket : findChildren<QSslSocket*>())
      socket->disconnect();
  }

  QString address() const {
    return QStringLiteral("https://127.0.0.1:%1/resources/downloadversion.txt").arg(serverPort());
  }
  /// The heads of all requests, in their order.
  QList<QByteArray> requests;
  /// Connections whose client has hung up.
  int hungUp = 0;

 private:
  void accept() {
    QTcpSocket* socket = nextPendingConnection();
    connect(socket, &QTcpSocket::disconnected, this, [this] { ++hungUp; });
    connect(socket, &QTcpSocket::readyRead, this, [this, socket, head = QByteArray()]() mutable {
      head += socket->readAll();
      if (!head.endsWith("\r\n\r\n")) return;
      requests += head;
      const QByteArray answer = answer_(head.split(' ').value(1));
      if (answer.isEmpty()) return;
      socket->write(answer);
      socket->disconnectFromHost();
    });
  }

  Answer answer_;
};

/// A whole answer with a body.
inline QByteArray httpAnswer(const QByteArray& body, const QByteArray& status = "200 OK",
                             const QByteArray& headers = {}) {
  return "HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n" +
         headers + "\r\n" + body;
}

/// A version file as it lies on the server.
inline QByteArray scrambled(std::u16string_view plain) {
  return QByteArray::fromStdString(utf8FromUtf16(simpleEncryptText(plain, true)));
}

}  // namespace corvana::test
