// The request for the version file.
#pragma once

#include <QByteArray>
#include <QFutureWatcher>
#include <QNetworkAccessManager>
#include <QObject>
#include <QTimer>
#include <QUrl>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "update/version_file.hpp"

class QNetworkReply;

namespace corvana {

/// The GET of one version file, with limits on its time and size. Belongs to its receiver and
/// goes with it; deletes itself after its result is delivered. Main thread only.
class DataTask : public QObject {
 public:
  /// Makes the result out of the body, or out of nothing when the request failed. Another thread.
  using Parse = std::function<VantorErgebnis(const std::optional<std::u16string>& text)>;
  /// Takes the result and the HTTP status, 0 without a response.
  using Deliver = std::function<void(const VantorErgebnis& ergebnis, int status)>;

  DataTask(const QUrl& address, std::chrono::milliseconds deadline, Parse parse, Deliver deliver,
           QObject* receiver);

  /// Ends the request, which completes as a failed one. Does nothing after that.
  void cancel();

 private:
  void receive();
  void countBytes();
  void complete();

  /// One for each request, so that nothing is kept between two of them: no cookie, no cached
  /// answer, no open connection.
  QNetworkAccessManager session_;
  QNetworkReply* reply_ = nullptr;
  QTimer deadline_;
  QTimer counting_;
  qint64 bytesReadBefore_ = 0;
  QByteArray body_;
  bool failed_ = false;
  bool completed_ = false;
  Parse parse_;
  Deliver deliver_;
  QFutureWatcher<VantorErgebnis> parsing_;
};

/// Request number, result, HTTP status (0 without a response).
using ReceiveResult =
    std::function<void(std::int64_t requestNumber, const VantorErgebnis& ergebnis, int status)>;

/// From the first byte sent to the last one received.
inline constexpr std::chrono::seconds fetchDeadline{30};
/// Bytes; an answer that is larger has failed.
inline constexpr qint64 maxVersionFileSize = qint64{1024} * 1024;
/// Bytes; an exchange that takes more has failed, whatever it consists of.
inline constexpr qint64 maxBytesReceived = 8 * maxVersionFileSize;

/// Fetches the version file from an https address and reads it on another thread. `receiveResult`
/// is called on the main thread, never before this function has returned, exactly once unless
/// `receiver` is gone by then. The task is valid until that call. Main thread.
DataTask* fetchVersionFile(const QUrl& address, const std::u16string& applicationName,
                           const std::u16string& installedVersion, std::int64_t requestNumber,
                           QObject* receiver, const ReceiveResult& receiveResult,
                           std::chrono::milliseconds deadline = fetchDeadline);

}  // namespace corvana
