#include "app/open_panel.hpp"

#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <algorithm>

#include "app/qt_values.hpp"
#include "batch/audio_files.hpp"
#include "platform/texts.hpp"

namespace corvana {
namespace {

/// "*.wav *.wave …"; the dialog compares them in any case of letters.
QString audioPatterns() {
  QStringList patterns;
  for (const std::string_view extension : audioExtensions)
    patterns << QStringLiteral("*.") +
                    QLatin1String(extension.data(), static_cast<qsizetype>(extension.size()));
  return patterns.join(QLatin1Char(' '));
}

}  // namespace

OpenPanel::OpenPanel(const QString& folder, QWidget* parent)
    : QFileDialog(parent, qtText(localised("Choose WAV or AIFF Files")), folder) {
  // The desktop's own panels choose either files or folders.
  setOption(QFileDialog::DontUseNativeDialog);
  setFileMode(QFileDialog::ExistingFiles);
  setLabelText(QFileDialog::Accept, qtText(localised("Convert")));
  setNameFilters({qtText(localised("WAV and AIFF files")) + " (" + audioPatterns() + ")",
                  qtText(localised("All files")) + " (*)"});
}

std::vector<std::filesystem::path> OpenPanel::chosenURLs() const {
  std::vector<std::filesystem::path> urls;
  for (const QString& file : selectedFiles())
    urls.emplace_back(QFile::encodeName(file).toStdString());
  return urls;
}

void OpenPanel::accept() {
  const QStringList files = selectedFiles();
  const auto* nameField = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
  const bool goesIntoFolder = nameField != nullptr && nameField->hasFocus() && files.size() == 1 &&
                              QFileInfo(files.front()).isDir();
  const bool allExist =
      !files.isEmpty() && std::all_of(files.begin(), files.end(),
                                      [](const QString& file) { return QFileInfo::exists(file); });
  // The base class goes into every folder, and knows what to say about missing files.
  if (goesIntoFolder || !allExist) {
    QFileDialog::accept();
  } else {
    done(QDialog::Accepted);
  }
}

}  // namespace corvana
