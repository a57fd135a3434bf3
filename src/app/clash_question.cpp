#include "app/clash_question.hpp"

#include <QPushButton>

#include "app/qt_values.hpp"
#include "platform/texts.hpp"
#include "vocabulary/text_format.hpp"

namespace corvana {

ClashQuestion::ClashQuestion(const NameClash& example, QWidget* parent) : QMessageBox(parent) {
  setAttribute(Qt::WA_DeleteOnClose);
  setIcon(QMessageBox::Question);
  setWindowTitle(qtText(localised("Replace Originals?")));
  // A long name has no place to break at and would be cut off by the edge.
  const int maxNameWidth = 30 * fontMetrics().averageCharWidth();
  const auto shown = [&](const std::string& name) {
    return fontMetrics()
        .elidedText(screenLine(name).simplified(), Qt::ElideMiddle, maxNameWidth)
        .toStdString();
  };
  setTextFormat(Qt::PlainText);
  setText(qtText(fillText(localised("The output of “%1$@” could replace “%2$@”, which is to be "
                                    "converted as well."),
                          {shown(example.input), shown(example.other)})));
  setInformativeText(
      qtText(localised("Keep Both: such outputs get numbered names, and no original is lost.\n"
                       "Replace: such outputs replace the originals, even before those are "
                       "converted.\n"
                       "Cancel: none of these files is converted.")));
  QPushButton* keepBoth = addButton(qtText(localised("&Keep Both")), QMessageBox::AcceptRole);
  QPushButton* replace = addButton(qtText(localised("&Replace")), QMessageBox::DestructiveRole);
  setDefaultButton(keepBoth);
  setEscapeButton(addButton(qtText(localised("&Cancel")), QMessageBox::RejectRole));
  connect(keepBoth, &QPushButton::clicked, this, [this] { emit answered(InputClash::keepBoth); });
  connect(replace, &QPushButton::clicked, this, [this] { emit answered(InputClash::replace); });
}

}  // namespace corvana
