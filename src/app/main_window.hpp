// The layout of the main window: its views, its menus, and who is connected with whom.
#pragma once

#include <QMainWindow>

#include "app/view_controller.hpp"

namespace corvana {

/// Closing it ends the program; a running conversion stops.
class MainWindow : public QMainWindow {
  Q_OBJECT
 public:
  explicit MainWindow(AppDelegate* appDelegate = nullptr);

  ViewController& controller() { return controller_; }

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void makeViews();
  QWidget* makeInvitation();
  void makeMenus();
  void showAbout();

  ViewController controller_;
};

}  // namespace corvana
