// The desktop's file manager.
#pragma once

#include <QObject>
#include <filesystem>
#include <vector>

namespace corvana {

/// Shows the files (absolute paths, at least one) selected in their folders. Where no file manager
/// on the session bus can do so, the folder of the first one is opened. Answers at once; main
/// thread.
void showInFileManager(const std::vector<std::filesystem::path>& files);

/// Remembers when the user last pressed or clicked something: a window manager brings a window to
/// the front only for something newer than what the user did last. One for the program, as its
/// event filter.
class LastInput : public QObject {
  Q_OBJECT
 public:
  /// Installs itself.
  explicit LastInput(QObject* application);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace corvana
