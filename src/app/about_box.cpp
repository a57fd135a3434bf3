#include "app/about_box.hpp"

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSslSocket>
#include <QVBoxLayout>

#include "app/qt_values.hpp"
#include "platform/bundle_info.hpp"
#include "platform/texts.hpp"
#include "update_window/check_for_updates.hpp"
#include "vocabulary/text_format.hpp"

namespace corvana {
namespace {

constexpr int iconSize = 64;
constexpr int margin = 20;

QString escaped(const std::string& text) {
  return qtText(text).toHtmlEscaped();
}

/// With their versions, one in each line.
QString libraries() {
  QStringList names{QStringLiteral("Qt ") + QLatin1String(qVersion())};
  // Only the update check uses it.
  if (offersUpdateCheck() && QSslSocket::supportsSsl())
    names << QSslSocket::sslLibraryVersionString().toHtmlEscaped();
  for (const std::string& library : systemLibraries())
    names << escaped(library);
  return names.join(QStringLiteral("<br>"));
}

QString aboutText() {
  const std::string version = bundleValue(mainBundleInfo(), bundleVersionKey);
  const QString homePage = QStringLiteral(CORVANA_HOME_PAGE);
  const auto paragraph = [](const QString& html) { return QStringLiteral("<p>%1</p>").arg(html); };
  return QStringLiteral("<h2>%1</h2>").arg(escaped(fillText(localised("Corvana %@"), {version}))) +
         paragraph(escaped(
             localised("Converts sampled instruments between WAV and AIFF and keeps their loops, "
                       "markers, cue points, root key, tuning, gain and ranges."))) +
         paragraph(QStringLiteral("<a href=\"%1\">%1</a>").arg(homePage.toHtmlEscaped())) +
         paragraph(escaped(localised("Free software under the MIT licence.")) +
                   QStringLiteral("<br>" CORVANA_COPYRIGHT)) +
         paragraph(escaped(localised("Libraries:")) + QStringLiteral("<br>") + libraries());
}

}  // namespace

void showAbout(QWidget& parent) {
  auto* box = new QDialog(&parent);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->setWindowTitle(qtText(localised("About Corvana")));

  auto* icon = new QLabel;
  icon->setPixmap(parent.windowIcon().pixmap(iconSize));
  auto* text = new QLabel(aboutText());
  text->setWordWrap(true);
  text->setMinimumWidth(50 * text->fontMetrics().averageCharWidth());
  text->setTextInteractionFlags(Qt::TextBrowserInteraction | Qt::TextSelectableByKeyboard);
  text->setOpenExternalLinks(true);

  auto* buttons = new QDialogButtonBox;
  QPushButton* aboutQt =
      buttons->addButton(qtText(localised("About &Qt")), QDialogButtonBox::HelpRole);
  QObject::connect(aboutQt, &QPushButton::clicked, qApp, &QApplication::aboutQt);
  QPushButton* close = buttons->addButton(qtText(localised("Close")), QDialogButtonBox::RejectRole);
  QObject::connect(buttons, &QDialogButtonBox::rejected, box, &QDialog::reject);

  auto* layout = new QVBoxLayout(box);
  layout->setContentsMargins(margin, margin, margin, margin);
  layout->setSpacing(margin);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  auto* content = new QHBoxLayout;
  content->setSpacing(margin);
  content->addWidget(icon, 0, Qt::AlignTop);
  content->addWidget(text, 1);
  layout->addLayout(content);
  layout->addWidget(buttons);
  close->setDefault(true);
  close->setFocus();
  box->open();
}

}  // namespace corvana
