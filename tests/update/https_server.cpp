#include "update/https_server.hpp"

#include <QFile>
#include <QProcess>
#include <QSslKey>
#include <QSslSocket>
#include <gtest/gtest.h>
#include <utility>

namespace corvana::test {

CertificateAuthority::CertificateAuthority() {
  openssl({"-subj", "/CN=Authority of a test", "-keyout", file("ca.key"), "-out", file("ca.pem")});
}

void CertificateAuthority::trustIt() const {
  QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
  configuration.setCaCertificates(QSslCertificate::fromPath(file("ca.pem")));
  QSslConfiguration::setDefaultConfiguration(configuration);
}

QSslConfiguration CertificateAuthority::issue(const QString& name) {
  openssl({"-subj", "/CN=Server of a test", "-addext", "subjectAltName=" + name, "-CA",
           file("ca.pem"), "-CAkey", file("ca.key"), "-keyout", file("server.key"), "-out",
           file("server.pem")});
  QFile key(file("server.key"));
  EXPECT_TRUE(key.open(QFile::ReadOnly));
  QSslConfiguration configuration;
  configuration.setLocalCertificateChain(QSslCertificate::fromPath(file("server.pem")));
  configuration.setPrivateKey(QSslKey(&key, QSsl::Ec));
  return configuration;
}

void CertificateAuthority::openssl(const QStringList& arguments) const {
  QProcess process;
  process.start("openssl", QStringList{"req", "-x509", "-newkey", "ec", "-pkeyopt",
                                       "ec_paramgen_curve:prime256v1", "-nodes", "-days", "2"} +
                               arguments);
  EXPECT_TRUE(process.waitForFinished() && process.exitCode() == 0)
      << "the openssl program is needed (Debian: apt-get install openssl): "
      << process.readAllStandardError().toStdString();
}

HttpsServer::HttpsServer(const QSslConfiguration& configuration, Answer answer)
    : answer_(std::move(answer)) {
  setSslConfiguration(configuration);
  connect(this, &QTcpServer::pendingConnectionAvailable, this, &HttpsServer::accept);
  EXPECT_TRUE(listen(QHostAddress::LocalHost));
}

HttpsServer::~HttpsServer() {
  for (QSslSocket* socket : findChildren<QSslSocket*>())
    socket->disconnect();
}

QString HttpsServer::address(const QString& path) const {
  return QStringLiteral("https://127.0.0.1:%1%2").arg(serverPort()).arg(path);
}

void HttpsServer::accept() {
  QTcpSocket* socket = nextPendingConnection();
  connect(socket, &QTcpSocket::disconnected, this, [this] { ++hungUp_; });
  connect(socket, &QTcpSocket::readyRead, this, [this, socket, head = QByteArray()]() mutable {
    head += socket->readAll();
    if (!head.endsWith("\r\n\r\n")) return;
    requests_ += head;
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

}  // namespace corvana::test
