#include "app/isolates.hpp"

#include <QStringList>
#include <algorithm>
#include <filesystem>

#include "app/qt_values.hpp"

namespace corvana {
namespace {

constexpr QChar isolate{0x2068};  // takes the direction of its first letter
constexpr QChar end{0x2069};

/// Or may hold: the rarer scripts of that direction have two units for a letter.
bool holdsRightToLeft(const QString& text) {
  return std::any_of(text.begin(), text.end(), [](QChar unit) {
    return unit.isSurrogate() || unit.direction() == QChar::DirR ||
           unit.direction() == QChar::DirAL;
  });
}

/// Sets `part` apart where it stands at or after `from`. What comes after it, otherwise -1.
qsizetype setApart(QString& text, const QString& part, qsizetype from) {
  const qsizetype start = text.indexOf(part, from);
  if (start < 0 || part.isEmpty()) return -1;
  text.insert(start + part.size(), end);
  text.insert(start, isolate);
  return start + part.size() + 2;
}

QString nameOf(const std::string& path) {
  return screenLine(std::filesystem::path(path).filename().native());
}

}  // namespace

QString isolatedText(const LogEntry& entry, Qt::LayoutDirection direction) {
  QString text = qtText(entry.screenText());
  if (direction == Qt::LeftToRight && !holdsRightToLeft(text)) return text;
  const qsizetype input = setApart(text, nameOf(entry.input), 0);
  const qsizetype output = input < 0 ? -1 : setApart(text, nameOf(entry.output), input);
  if (output < 0) return text;
  const QString figures = text.mid(output).section(QLatin1Char('\n'), 0, 0).trimmed();
  setApart(text, figures, output);
  return text;
}

QString withoutIsolates(QString text) {
  return text.remove(isolate).remove(end);
}

QRegularExpression findingText(const QString& text) {
  QStringList letters;
  for (const char32_t letter : text.toUcs4())
    letters << QRegularExpression::escape(QString::fromUcs4(&letter, 1));
  return QRegularExpression(letters.join(QStringLiteral("[\u2068\u2069]*")));
}

}  // namespace corvana
