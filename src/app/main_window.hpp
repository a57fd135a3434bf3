// The layout of the main window: its views, its menus, and who is connected with whom.
#pragma once

#include <QApplication>
#include <QMainWindow>

#include "app/file_manager.hpp"
#include "app/find_bar.hpp"
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
  void makeLogMenus();
  void showAbout();

  const LastInput lastInput_{qApp};
  FindBar* findBar_ = nullptr;
  ViewController controller_;
};

}  // namespace corvana
