// The application object's helper: files that the desktop asks the program to open.
#pragma once

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <filesystem>
#include <vector>

namespace corvana {

class ViewController;

/// Main thread only.
class AppDelegate : public QObject {
  Q_OBJECT
 public:
  /// Opens files and folders with the application: at once when the window is there, else when
  /// it has loaded. Always a success; what is usable is found out later.
  void openFiles(const std::vector<std::filesystem::path>& paths);

  /// Brings the window to the front (bringToFront).
  void activate(const QByteArray& activationToken = {});

  /// Set by the controller when its view has loaded.
  QPointer<ViewController> mainViewController;

  /// Files opened before the controller was there.
  std::vector<std::filesystem::path> pendingURLs;
};

}  // namespace corvana
