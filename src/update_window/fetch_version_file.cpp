#include "update_window/fetch_version_file.hpp"

#include <QCoreApplication>
#include <QFile>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPromise>
#include <QThreadPool>
#include <memory>
#include <utility>

#include "vocabulary/unicode.hpp"

namespace corvana {
namespace {

constexpr qint64 readBufferSize = qint64{64} * 1024;
constexpr int maxRedirects = 10;
constexpr std::chrono::milliseconds countingInterval{20};

/// All that the program has read from connections and files so far, in bytes; 0 where the system
/// does not count it. The toolkit keeps status lines, headers, chunk lines and the bodies of
/// refusals of any size, and says nothing before their end; its sockets are out of reach.
/// The program itself maps its files, so that a conversion adds nothing here.
qint64 bytesRead() {
  QFile counters(QStringLiteral("/proc/self/io"));
  if (!counters.open(QFile::ReadOnly)) return 0;
  return counters.readLine().split(' ').value(1).trimmed().toLongLong();
}

QNetworkRequest requestFor(const QUrl& address) {
  QNetworkRequest request(address);
  request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                       QNetworkRequest::NoLessSafeRedirectPolicy);
  request.setMaximumRedirectsAllowed(maxRedirects);
  request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
  request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
  request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
  // Both replace headers that the toolkit would send anyway: the one asks for an answer as it
  // is, which cannot unpack to more than its size, the other keeps the user's language private.
  request.setRawHeader("Accept-Encoding", "identity");
  request.setRawHeader("Accept-Language", "*");
  return request;
}

/// Whether the answer came through, whatever its status. The toolkit reports a status from 400
/// on as an error too, in a range of its own.
bool isComplete(QNetworkReply::NetworkError error, int status) {
  if (error == QNetworkReply::NoError) return true;
  return status >= 400 && error >= QNetworkReply::ContentAccessDenied &&
         error != QNetworkReply::ProtocolFailure;
}

}  // namespace

DataTask::DataTask(const QUrl& address, std::chrono::milliseconds deadline, Parse parse,
                   Deliver deliver, QObject* receiver)
    : QObject(receiver), parse_(std::move(parse)), deliver_(std::move(deliver)) {
  reply_ = session_.get(requestFor(address));
  reply_->setReadBufferSize(readBufferSize);
  connect(reply_, &QNetworkReply::readyRead, this, &DataTask::receive);
  connect(reply_, &QNetworkReply::finished, this, &DataTask::complete);
  connect(&deadline_, &QTimer::timeout, this, &DataTask::cancel);
  // A program that ends does not wait for servers.
  connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this,
          [this] { delete this; });
  connect(&counting_, &QTimer::timeout, this, &DataTask::countBytes);
  bytesReadBefore_ = bytesRead();
  counting_.start(countingInterval);
  deadline_.setSingleShot(true);
  deadline_.start(deadline);
}

void DataTask::cancel() {
  if (completed_) return;
  failed_ = true;
  reply_->abort();  // completes before it returns
}

void DataTask::receive() {
  body_ += reply_->read(maxVersionFileSize + 1 - body_.size());
  if (body_.size() > maxVersionFileSize) cancel();
}

void DataTask::countBytes() {
  if (bytesRead() - bytesReadBefore_ > maxBytesReceived) cancel();
}

void DataTask::complete() {
  completed_ = true;
  counting_.stop();
  deadline_.stop();
  const int status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
  std::optional<std::u16string> text;
  if (!failed_ && isComplete(reply_->error(), status)) {
    body_ += reply_->readAll();
    if (body_.size() <= maxVersionFileSize)
      text = utf16FromUtf8({body_.constData(), static_cast<std::size_t>(body_.size())});
  }
  connect(&parsing_, &QFutureWatcherBase::finished, this, [this, status] {
    deleteLater();
    deliver_(parsing_.result(), status);
  });
  const auto parsed = std::make_shared<QPromise<VantorErgebnis>>();
  parsing_.setFuture(parsed->future());
  QThreadPool::globalInstance()->start([parsed, parse = parse_, text = std::move(text)] {
    parsed->start();
    parsed->addResult(parse(text));
    parsed->finish();
  });
}

DataTask* fetchVersionFile(const QUrl& address, const std::u16string& applicationName,
                           const std::u16string& installedVersion, std::int64_t requestNumber,
                           QObject* receiver, const ReceiveResult& receiveResult,
                           std::chrono::milliseconds deadline) {
  return new DataTask(
      address, deadline,
      [=](const std::optional<std::u16string>& text) {
        return parseVersionFile(text, applicationName, installedVersion);
      },
      [=](const VantorErgebnis& ergebnis, int status) {
        receiveResult(requestNumber, ergebnis, status);
      },
      receiver);
}

}  // namespace corvana
