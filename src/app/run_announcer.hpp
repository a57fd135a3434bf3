// Tells the desktop of a run: progress in the task bar and, when nobody looks at the program, a
// notification at the end.
#pragma once

#include <QByteArray>
#include <QDBusConnection>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QWidget>
#include <cstdint>

namespace corvana {

/// What there is to say of a run.
struct RunState {
  bool isRunning = false;
  double progress = 0;            ///< 0.0 to 1.0
  QString status = {};            ///< one line; at the end, what was done
  std::int64_t failed = 0;        ///< files that could not be converted since the start
  std::int64_t withWarnings = 0;  ///< files with warnings since the start
};

/// Main thread only. Without a session bus it only marks the window.
class RunAnnouncer : public QObject {
  Q_OBJECT
 public:
  explicit RunAnnouncer(const QDBusConnection& bus = QDBusConnection::sessionBus());
  /// Leaves no progress behind.
  ~RunAnnouncer() override;

  /// To be called whenever something has changed. `window` shows the run, and comes to the front
  /// when the notification is clicked.
  void update(QWidget& window, const RunState& state);

 private slots:
  void activationTokenGiven(uint notification, const QString& token);
  void notificationClicked(uint notification);

 private:
  void showProgress(double progress, bool visible);
  void notify(const RunState& end);

  QDBusConnection bus_;
  QPointer<QWidget> window_;
  RunState begin_;  // of the run
  int shownPercent_ = 0;
  uint notification_ = 0;       // the last one; 0: none yet
  QByteArray activationToken_;  // for the click that follows
};

}  // namespace corvana
