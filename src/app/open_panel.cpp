#include "app/open_panel.hpp"

#include <QAbstractItemView>
#include <QAction>
#include <QCompleter>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QMessageBox>
#include <QScreen>
#include <QSignalBlocker>
#include <QToolButton>
#include <algorithm>
#include <system_error>

#include "app/places.hpp"
#include "app/qt_values.hpp"
#include "platform/texts.hpp"
#include "vocabulary/file_names.hpp"
#include "vocabulary/text_format.hpp"

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

/// One of the base class's own widgets, which it makes as soon as it is told not to be the
/// desktop's panel: that one chooses either files or folders.
template <typename Widget>
Widget& part(QFileDialog& dialog, const char* name) {
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  return *dialog.findChild<Widget*>(QLatin1String(name));
}

/// In place of the base class's button, which calls itself "Open" beside a folder.
QPushButton& makeConfirmButton(QFileDialog& dialog) {
  auto& box = part<QDialogButtonBox>(dialog, "buttonBox");
  box.setStandardButtons(QDialogButtonBox::Cancel);
  QPushButton* button = box.addButton(qtText(localised("Convert")), QDialogButtonBox::AcceptRole);
  button->setDefault(true);
  return *button;
}

bool isFolder(const QString& path) {
  return QFileInfo(path).isDir();
}

bool isFile(const QModelIndex& row) {
  return !static_cast<const QFileSystemModel*>(row.model())->isDir(row);
}

}  // namespace

OpenPanel::OpenPanel(const QString& folder, QWidget* parent)
    : QFileDialog(parent, qtText(localised("Choose WAV or AIFF Files")), folder),
      name_(part<QLineEdit>(*this, "fileNameEdit")),
      list_(part<QListView>(*this, "listView")),
      confirm_(makeConfirmButton(*this)),
      toolkitPlaces_(sidebarUrls()) {
  setOption(QFileDialog::ReadOnly);
  // accept is what Enter does in the name field.
  disconnect(&part<QDialogButtonBox>(*this, "buttonBox"), &QDialogButtonBox::accepted, nullptr,
             nullptr);
  part<QToolButton>(*this, "newFolderButton").hide();
  for (const char* action : {"qt_rename_action", "qt_delete_action"})
    part<QAction>(*this, action).setVisible(false);
  setFileMode(QFileDialog::ExistingFiles);
  setNameFilters({qtText(localised("WAV and AIFF files")) + " (" + audioPatterns() + ")",
                  qtText(localised("All files")) + " (*)"});
  setSidebarUrls(usersPlaces());
  const int letter = fontMetrics().averageCharWidth();
  part<QWidget>(*this, "sidebar").setMinimumWidth(20 * letter);
  resize(QSize(120 * letter, 75 * letter).boundedTo(screen()->availableSize()));
  connect(&confirm_, &QPushButton::clicked, this, [this] { done(QDialog::Accepted); });
  connect(&name_, &QLineEdit::textChanged, this, &OpenPanel::nameChanged);
  connect(list_.selectionModel(), &QItemSelectionModel::selectionChanged, this,
          &OpenPanel::selectionChanged);
  connect(static_cast<QFileSystemModel*>(list_.model()), &QFileSystemModel::rootPathChanged, this,
          &OpenPanel::showWhetherChosen);
  showWhetherChosen();
}

OpenPanel::~OpenPanel() {
  // The base class remembers them for all programs.
  setSidebarUrls(toolkitPlaces_);
}

std::vector<std::filesystem::path> OpenPanel::chosenURLs() const {
  std::vector<std::filesystem::path> urls;
  for (const QString& path : chosenPaths())
    urls.emplace_back(QFile::encodeName(path).toStdString());
  return urls;
}

void OpenPanel::accept() {
  if (isTyped_) {
    for (const QString& path : typedPaths()) {
      if (isFolder(path)) {
        setDirectory(QDir::cleanPath(path));
        name_.clear();
        return name_.completer()->popup()->hide();
      }
      if (QFileInfo::exists(path)) continue;
      const std::string reason =
          std::make_error_code(std::errc::no_such_file_or_directory).message();
      auto* message = new QMessageBox(
          QMessageBox::Warning, windowTitle(),
          screenLine(fillText(localised("Cannot read '%1$@': %2$@"), {path.toStdString(), reason})),
          QMessageBox::Ok, this);
      message->setAttribute(Qt::WA_DeleteOnClose);
      message->setTextFormat(Qt::PlainText);
      return message->open();
    }
  }
  if (confirm_.isEnabled()) done(QDialog::Accepted);
}

void OpenPanel::nameChanged() {
  lastName_ = name_.text();
  isTyped_ = true;
  showWhetherChosen();
}

void OpenPanel::selectionChanged() {
  // The base class selects what is being typed, and nameChanged is still to come.
  if (name_.text() != lastName_) return;
  const QModelIndexList rows = selectedRows();
  // A change of the folder takes the selection away, but not what was typed.
  if (isTyped_ && rows.isEmpty()) return;
  isTyped_ = false;
  if (std::none_of(rows.begin(), rows.end(), isFile)) {
    // The base class leaves the name of a file there that is selected no longer.
    const QSignalBlocker blocker(name_);
    name_.clear();
    lastName_.clear();
  }
  showWhetherChosen();
}

QModelIndexList OpenPanel::selectedRows() const {
  QModelIndexList rows = list_.selectionModel()->selectedRows();
  // Typed paths of other folders are selected as well, where nobody sees it.
  rows.removeIf([this](const QModelIndex& row) { return row.parent() != list_.rootIndex(); });
  return rows;
}

QStringList OpenPanel::typedPaths() const {
  const auto absolute = [this](const QString& path) {
    if (path == QLatin1String("~") || path.startsWith(QLatin1String("~/")))
      return QDir::homePath() + path.mid(1);
    return directory().absoluteFilePath(path);
  };
  const QString text = name_.text();
  if (text.isEmpty()) return {};
  if (!text.contains(QLatin1Char('"')) || QFileInfo::exists(absolute(text)))
    return {absolute(text)};
  QStringList paths;
  const QStringList pieces = text.split(QLatin1Char('"'));
  for (qsizetype i = 1; i < pieces.size(); i += 2)
    if (!pieces[i].isEmpty()) paths << absolute(pieces[i]);
  return paths;
}

QStringList OpenPanel::chosenPaths() const {
  QStringList paths;
  if (!isTyped_) {
    for (const QModelIndex& row : selectedRows())
      paths << row.data(QFileSystemModel::FilePathRole).toString();
    return paths;
  }
  paths = typedPaths();
  const bool areFiles = std::all_of(paths.begin(), paths.end(), [](const QString& path) {
    return QFileInfo::exists(path) && !isFolder(path);
  });
  return areFiles ? paths : QStringList();
}

void OpenPanel::showWhetherChosen() {
  confirm_.setEnabled(!chosenPaths().isEmpty());
}

}  // namespace corvana
