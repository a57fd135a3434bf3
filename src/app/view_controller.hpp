// The controller of the main window: connects its views with the batch driver, the preferences
// and the open panel.
#pragma once

#include <QCheckBox>
#include <QFont>
#include <QPointer>
#include <QProgressBar>
#include <QToolButton>
#include <optional>
#include <string>

#include "app/app_delegate.hpp"
#include "app/drop_view.hpp"
#include "app/log_view.hpp"
#include "app/qt_main_queue.hpp"
#include "app/run_announcer.hpp"
#include "batch/batch_driver.hpp"
#include "update_window/news_label.hpp"

namespace corvana {

/// Main thread only. Closing and destroying it waits for the block of samples being written.
class ViewController : public DropViewDelegate, public BatchView {
  Q_OBJECT
 public:
  /// `appDelegate`, where there is one, learns of the controller in viewDidLoad.
  explicit ViewController(AppDelegate* appDelegate = nullptr);

  // The views, connected by the window's layout; all of them are set before viewDidLoad.
  QPointer<DropView> dropView;
  QPointer<QCheckBox> subfolderCheckbox;
  QPointer<QCheckBox> overwriteCheckbox;
  QPointer<QProgressBar> progressIndicator;
  QPointer<NewsLabel> statusLabel;
  QPointer<QToolButton> stopButton;    ///< seen during a run; its action stops it
  QPointer<QToolButton> countsButton;  ///< what became of the files of the last run
  QPointer<QLabel> hintLabel;          ///< hidden while it has nothing to say
  QPointer<LogView> logView;

  /// Font of every log line.
  const QFont logFont;

  /// Puts the views into their first state and takes over files opened before.
  void viewDidLoad();

  /// Converts files and folders (BatchDriver::processURLs).
  void processURLs(const std::vector<std::filesystem::path>& urls);
  void filesDropped(const std::vector<std::filesystem::path>& urls) override;

  /// Lets the user choose files and folders, and converts them.
  void showOpenPanel();

  /// No further file is started, for good (BatchDriver::stop).
  void stop();
  /// Stops the present run, and says on standard error which file it leaves incomplete: of the
  /// log, nobody will see the end.
  void stopToQuit();

  /// The window that the views are in.
  QWidget* window() const;

  const BatchDriver& driver() const { return driver_; }

  BatchOptions options() const override;
  void runStarted() override;
  // The views need longer for one change than the driver for a short file, so changes gather
  // until showChanges.
  void setStatus(const std::string& text) override;
  void setProgress(double fraction) override;
  void appendLog(const LogEntry& entry) override;
  void batchStarted(const std::vector<AudioFile>& files, const BatchOptions& options) override;
  /// Asks the user when the event loop runs next: a window that is just being made is shown then,
  /// and whoever handed the files over has been answered.
  void confirmReplacingInputs(const NameClash& example,
                              const std::function<void(InputClash)>& answer) override;

  /// Brings the views up to date. Happens by itself after each batch of the driver's posts.
  void showChanges();

 public slots:
  /// Stops the present run (BatchDriver::stopRun).
  void stopRun();
  void subfolderChanged();
  void overwriteChanged();
  void openDocument();
  void mnuCheckForUpdates();

 signals:
  /// The views show the end of the run.
  void runEnded();

 private:
  /// What the views do not show yet.
  struct Changes {
    std::optional<std::string> status;
    std::optional<double> progress;
    bool counts = false;
  };

  void showCounts();
  void announceRun();
  void storeCheckboxState(const QCheckBox& sender, const char* key);
  /// Until the next run starts.
  void showHint(QString hint);
  void readAloud();

  QPointer<AppDelegate> appDelegate_;
  Changes changes_;
  bool showsRun_ = false;
  bool isQuitting_ = false;
  bool saidNotStored_ = false;
  RunAnnouncer announcer_;
  bool startWasRead_ = false;
  QString openPanelFolder_;  // where the last panel of this run was
  QtMainQueue mainQueue_;
  BatchDriver driver_;  // last: its thread ends before its views and its queue do
};

}  // namespace corvana
