#include "update_window/https_server.hpp"

#include <QFile>
#include <QProcess>
#include <QSslKey>
#include <QSslSocket>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <utility>

#include "update/simple_encrypt_text.hpp"
#include "vocabulary/unicode.hpp"

namespace corvana::test {

QSslConfiguration certificate(bool isTrusted) {
  static const QTemporaryDir folder;
  const auto openssl = [](const QString& arguments) {
    QProcess process;
    process.setWorkingDirectory(folder.path());
    process.startCommand(
        "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 " +
        arguments);
    EXPECT_TRUE(process.waitForFinished() && process.exitCode() == 0)
        << "the openssl program is needed: " << process.readAllStandardError().toStdString();
  };
  if (!QFile::exists(folder.filePath("ca.pem"))) {
    openssl("-subj /CN=Authority -keyout ca.key -out ca.pem");
    QSslConfiguration client = QSslConfiguration::defaultConfiguration();
    client.setCaCertificates(QSslCertificate::fromPath(folder.filePath("ca.pem")));
    QSslConfiguration::setDefaultConfiguration(client);
  }
  openssl(QString("-subj /CN=Server -keyout server.key -out server.pem -addext "
                  "subjectAltName=IP:127.0.0.1") +
          (isTrusted ? " -CA ca.pem -CAkey ca.key" : ""));
  QFile key(folder.filePath("server.key"));
  EXPECT_TRUE(key.open(QFile::ReadOnly));
  QSslConfiguration server;
  server.setLocalCertificateChain(QSslCertificate::fromPath(folder.filePath("server.pem")));
  server.setPrivateKey(QSslKey(&key, QSsl::Ec));
  return server;
}

HttpsServer::HttpsServer(Answer answer, const QSslConfiguration& configuration)
    : answer_(std::move(answer)) {
  setSslConfiguration(configuration);
  connect(this, &QTcpServer::pendingConnectionAvailable, this, &HttpsServer::accept);
  EXPECT_TRUE(listen(QHostAddress::LocalHost));
}

HttpsServer::~HttpsServer() {
  for (QSslSocket* socket : findChildren<QSslSocket*>())
    socket->disconnect();
}

QString HttpsServer::address() const {
  return QStringLiteral("https://127.0.0.1:%1/resources/downloadversion.txt").arg(serverPort());
}

void HttpsServer::accept() {
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

QByteArray httpAnswer(const QByteArray& body, const QByteArray& status, const QByteArray& headers) {
  return "HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n" +
         headers + "\r\n" + body;
}

QByteArray scrambled(std::u16string_view plain) {
  return QByteArray::fromStdString(utf8FromUtf16(simpleEncryptText(plain, true)));
}

}  // namespace corvana::test
