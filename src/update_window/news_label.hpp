// A label that speaks: what it says can be read aloud the moment it changes.
#pragma once

#include <QLabel>

namespace corvana {

/// For screen readers it is a notification. Its name is its text, its accessible description what
/// there is to add.
class NewsLabel : public QLabel {
  Q_OBJECT
 public:
  explicit NewsLabel(QWidget* parent = nullptr);

  /// Has screen readers read name and description aloud, wherever the user is.
  void announce();
};

}  // namespace corvana
