// The layout of the main window: its views, its menus, and who is connected with whom.
#pragma once

#include <QApplication>
#include <QMainWindow>
#include <QPointer>

#include "app/file_manager.hpp"
#include "app/find_bar.hpp"
#include "app/quit_question.hpp"
#include "app/view_controller.hpp"

namespace corvana {

/// Closing it ends the program; during a run it asks first.
class MainWindow : public QMainWindow {
  Q_OBJECT
 public:
  explicit MainWindow(AppDelegate* appDelegate = nullptr);

  ViewController& controller() { return controller_; }

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void makeViews();
  void makeMenus();
  void makeLogMenus();
  void askBeforeQuitting();
  void runEnded();

  const LastInput lastInput_{qApp};
  FindBar* findBar_ = nullptr;
  QPointer<QuitQuestion> quitQuestion_;
  bool isQuitting_ = false;  // the run is being stopped for it
  bool quitsUnasked_ = false;
  ViewController controller_;
};

}  // namespace corvana
