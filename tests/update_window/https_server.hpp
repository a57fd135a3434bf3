// A web server with a certificate of its own, on this machine.
#pragma once

#include <QByteArray>
#include <QList>
#include <QSslConfiguration>
#include <QSslServer>
#include <QString>
#include <functional>
#include <string_view>

namespace corvana::test {

/// A server's configuration with a certificate made with the openssl program. An authority signs
/// it that every request of this program trusts from now on, it alone; without trust the
/// certificate signs itself.
QSslConfiguration certificate(bool isTrusted = true);

/// Answers every request with what `answer` gives for its path, byte for byte, and hangs up.
/// An empty answer leaves the client waiting.
class HttpsServer : public QSslServer {
 public:
  using Answer = std::function<QByteArray(const QByteArray& path)>;

  explicit HttpsServer(Answer answer, const QSslConfiguration& configuration = certificate());
  ~HttpsServer() override;

  QString address() const;
  /// The heads of all requests, in their order.
  QList<QByteArray> requests;
  /// Connections whose client has hung up.
  int hungUp = 0;

 private:
  void accept();

  Answer answer_;
};

/// A whole answer with a body.
QByteArray httpAnswer(const QByteArray& body, const QByteArray& status = "200 OK",
                      const QByteArray& headers = {});

/// A version file as it lies on the server.
QByteArray scrambled(std::u16string_view plain);

}  // namespace corvana::test
