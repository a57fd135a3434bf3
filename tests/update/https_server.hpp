// A web server with a certificate of its own, on this machine.
#pragma once

#include <QByteArray>
#include <QList>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslServer>
#include <QString>
#include <QTemporaryDir>
#include <functional>

namespace corvana::test {

/// A certificate authority that lives as long as the test program, made with the openssl program.
/// `trustIt` makes every later request of this program trust it, and it alone.
class CertificateAuthority {
 public:
  CertificateAuthority();

  void trustIt() const;
  /// A server's configuration with a certificate for `name`, like "IP:127.0.0.1".
  QSslConfiguration issue(const QString& name);

 private:
  void openssl(const QStringList& arguments) const;
  QString file(const QString& name) const { return folder_.filePath(name); }

  QTemporaryDir folder_;
};

/// Answers every request with what `answer` gives for its path, byte for byte, and hangs up.
/// An empty answer leaves the client waiting.
class HttpsServer : public QSslServer {
 public:
  using Answer = std::function<QByteArray(const QByteArray& path)>;

  HttpsServer(const QSslConfiguration& configuration, Answer answer);
  ~HttpsServer() override;

  QString address(const QString& path = QStringLiteral("/resources/downloadversion.txt")) const;
  /// The heads of all requests, in their order.
  const QList<QByteArray>& requests() const { return requests_; }
  /// Connections whose client has hung up.
  int hungUp() const { return hungUp_; }

 private:
  void accept();

  Answer answer_;
  QList<QByteArray> requests_;
  int hungUp_ = 0;
};

/// A whole answer with a body.
QByteArray httpAnswer(const QByteArray& body, const QByteArray& status = "200 OK",
                      const QByteArray& headers = {});

}  // namespace corvana::test
