// What the drop area says as long as nothing is over it.
#pragma once

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QWidget>

namespace corvana {

/// An icon, what happens to dropped files, and a button for those who would rather choose; of
/// these what fits: in little height the text and the button stand side by side.
class Invitation : public QWidget {
  Q_OBJECT
 public:
  explicit Invitation(QWidget* parent = nullptr);

  /// Room for the button.
  QSize minimumSizeHint() const override;

 signals:
  /// The user wants to choose files.
  void chosen();

 protected:
  void changeEvent(QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void followFont();
  void arrange();

  QBoxLayout* layout_;
  QWidget* icon_;
  QLabel* title_;
  QLabel* detail_;
  QPushButton* button_;
};

}  // namespace corvana
