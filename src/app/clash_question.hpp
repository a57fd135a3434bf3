// Asks what is to become of inputs that the outputs of others would replace.
#pragma once

#include <QMessageBox>

#include "batch/batch_inputs.hpp"
#include "batch/batch_options.hpp"

namespace corvana {

/// Deletes itself when closed.
class ClashQuestion : public QMessageBox {
  Q_OBJECT
 public:
  ClashQuestion(const NameClash& example, QWidget* parent);

 signals:
  /// Not when the question is cancelled.
  void answered(corvana::InputClash clash);
};

}  // namespace corvana
