// The log of the main window: what became of every file, and the way from there to the files.
#pragma once

#include <QPlainTextEdit>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "batch/batch_driver.hpp"

namespace corvana {

/// Files of one run.
struct RunCounts {
  std::int64_t converted = 0;
  std::int64_t failed = 0;
  std::int64_t withWarnings = 0;  ///< of the converted ones
};

/// Its context menu is made of the widget's actions.
class LogView : public QPlainTextEdit {
  Q_OBJECT
 public:
  /// File managers may open a window for every folder.
  static constexpr std::ptrdiff_t maxShownFiles = 50;

  explicit LogView(QWidget* parent = nullptr);

  /// The counts, and the walk through the problems, are those of the entries from here on.
  void startRun();
  const RunCounts& counts() const { return counts_; }

  /// Takes an entry in; showAppended shows it.
  void append(const LogEntry& entry);
  /// Shows what was taken in and scrolls to the end. The selection stays as it is.
  void showAppended();

  /// Exactly what it says, a line feed after each entry.
  QString text() const;

  /// What a user looks for of the entries that are selected or have the cursor: the written file,
  /// or the one that could not be converted.
  std::vector<std::filesystem::path> chosenFiles() const;

 public slots:
  /// Select and show the next (previous) entry of the run that failed or has warnings; after the
  /// last comes the first.
  void showNextProblem();
  void showPreviousProblem();

  /// The chosen files, unless they are too many.
  void showInFileManager();
  /// Of the chosen files; one in a line.
  void copyPaths();
  /// Lets the user choose where.
  void saveAs();

  void zoomBy(int steps);
  void resetZoom();

 signals:
  /// The user has chosen other files.
  void filesChosen(std::ptrdiff_t count);

 protected:
  void changeEvent(QEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  /// Exactly the text; a drag has the written files as well.
  QMimeData* createMimeDataFromSelection() const override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool viewportEvent(QEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  /// Its paths stand in paths_: the input's, then what the output's has after their common start.
  struct Entry {
    int firstLine = 0;
    std::uint32_t inputLength = 0;
    std::uint32_t commonLength = 0;
    std::uint32_t outputLength = 0;  ///< of the whole path; 0 without an output
    std::size_t paths = 0;

    bool hasFile() const { return inputLength > 0; }
    bool hasOutput() const { return outputLength > 0; }
  };
  using Entries = std::vector<Entry>;

  std::string inputOf(const Entry& entry) const;
  std::string outputOf(const Entry& entry) const;
  Entries::const_iterator entryOfLine(int line) const;
  /// Those that are selected or have the cursor.
  std::pair<Entries::const_iterator, Entries::const_iterator> chosenEntries() const;
  void showProblem(bool forward);
  /// Selects it; from its end to its start, so that the start is in sight in any case.
  void showEntry(Entries::const_iterator entry);
  QString toolTipAt(const QPoint& position) const;
  void saveTo(const QString& path);
  void followInterfaceDirection();
  void followTheme();
  bool isAtEnd() const;
  void scrollToEnd();

  Entries entries_;
  std::string paths_;  // of all entries: texts of their own would take several times the memory
  int lines_ = 0;      // of all entries
  QString appended_;
  RunCounts counts_;
  std::vector<std::ptrdiff_t> problems_;  // entries of the run that failed or have warnings
  int zoom_ = 0;
  bool drags_ = false;
};

}  // namespace corvana
