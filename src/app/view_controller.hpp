// The controller of the main window: connects its views with the batch driver, the preferences
// and the open panel.
#pragma once

#include <QCheckBox>
#include <QFont>
#include <QLabel>
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
  QPointer<QLabel> statusLabel;
  QPointer<QToolButton> countsButton;  ///< what became of the files of the last run
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

  /// No further file is started.
  void stop();

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
  /// Asks the user when the event loop runs next: a window that is just being made is shown then,
  /// and whoever handed the files over has been answered.
  void confirmReplacingInputs(const NameClash& example,
                              const std::function<void(InputClash)>& answer) override;

  /// Brings the views up to date. Happens by itself after each batch of the driver's posts.
  void showChanges();

 public slots:
  void subfolderChanged();
  void overwriteChanged();
  void openDocument();
  void mnuCheckForUpdates();

 private:
  /// What the views do not show yet.
  struct Changes {
    std::optional<std::string> status;
    std::optional<double> progress;
    bool counts = false;
  };

  void announceRun();

  QPointer<AppDelegate> appDelegate_;
  Changes changes_;
  std::int64_t filesWithWarnings_ = 0;
  RunAnnouncer announcer_;
  QString openPanelFolder_;  // where the last panel of this run was
  QtMainQueue mainQueue_;
  BatchDriver driver_;  // last: its thread ends before its views and its queue do
};

}  // namespace corvana
