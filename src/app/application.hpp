// The program's event loop, which an exception ends in order.
#pragma once

#include <QApplication>

#include "platform/ending.hpp"

namespace corvana {

/// An exception out of any event handler, slot or posted call ends the program (endForException):
/// the toolkit itself could not pass it on.
class Application : public QApplication {
 public:
  using QApplication::QApplication;

  bool notify(QObject* receiver, QEvent* event) override {
    try {
      return QApplication::notify(receiver, event);
    } catch (...) {
      endForException();
    }
  }
};

}  // namespace corvana
