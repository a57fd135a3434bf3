// The update window: asks whether there is a newer version and shows the answer.
#pragma once

#include <QDialog>
#include <QPointer>
#include <QString>
#include <cstdint>

#include "update/version_file.hpp"

class QAbstractScrollArea;
class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace corvana {

class DataTask;
class NewsLabel;
class SpinningWheel;

/// The window and what steers it. Made once, shown again at each check. Its controls carry the
/// names of their fields as object names. Main thread only.
class VantorWindowController : public QDialog {
  Q_OBJECT
 public:
  VantorWindowController();

  /// The program's one window, made at first use and never destroyed.
  static VantorWindowController& sharedController();

  /// Shows the window and asks for the version file at `address`. Does nothing when an argument
  /// is blank or the address holds no "/".
  void startUpdateCheck(const QString& applicationName, const QString& installedVersion,
                        const QString& address);

  /// Shows the answer to a request. An answer to any but the latest one, or one that comes after
  /// the window was closed, is dropped. `status` is the HTTP status, 0 without a response.
  void receiveResult(std::int64_t requestNumber, const VantorErgebnis& result, int status);

  void showLoadingState();
  void showResult(const VantorErgebnis& result, int status);

  void btnAskMeLaterPressed();
  void btnGotoProductWebsitePressed();
  void btnDownloadUpdatePressed();

  /// Gives up the check that is running.
  void windowWillClose();

  /// The Escape key closes the window like its close button.
  void reject() override;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void layoutControls();
  void fetch();

  QLabel* imgAppIcon;
  NewsLabel* lblInfoBoldLine;
  QLabel* lblInfoWithVersionNumbers;
  QLabel* lblReleaseNotes;
  QAbstractScrollArea* scrollReleaseNotes;  ///< here the text area scrolls itself: the same widget
  QPlainTextEdit* txtDisplayReleaseNotes;
  SpinningWheel* progressWheel1;
  QPushButton* btnAskMeLater;
  QPushButton* btnGotoProductWebsite;
  QPushButton* btnDownloadUpdate;
  QString strInternalAppName;
  QString strInternalAppVersion;
  QString strInternalDownloadURL;
  VantorErgebnis ergebnis;
  QPointer<DataTask> laufenderTask;
  std::int64_t anfrageNummer = 0;  ///< number of the latest request
};

}  // namespace corvana
