#include "app/help_text.hpp"

#include <QAction>
#include <QMenu>
#include <initializer_list>
#include <string>

#include "app/qt_values.hpp"
#include "platform/texts.hpp"
#include "vocabulary/language.hpp"
#include "vocabulary/text_format.hpp"

namespace corvana {
namespace {

/// Untranslated texts.
using Keys = std::initializer_list<const char*>;

constexpr const char* samples =
    translatable("Every sample value, the bit depth, the sample rate and the channels.");
constexpr const char* tuning = translatable("Root key and fine tuning, in whole cents.");
constexpr const char* ranges = translatable("Gain, key range and velocity range.");
constexpr const char* behindEnd = translatable(
    "Cue points and markers behind the end of the sound; a loop that reaches beyond "
    "it ends with it.");
constexpr const char* limited = translatable(
    "Values out of range are limited: keys below 0 or above 127, velocities below 1 or above 127, "
    "fine tuning beyond 50 cents.");

QString escaped(const std::string& text) {
  return qtText(text).toHtmlEscaped();
}

QString heading(const char* key) {
  return QStringLiteral("<h3>%1</h3>").arg(escaped(localised(key)));
}

QString paragraph(const std::string& text) {
  return QStringLiteral("<p>%1</p>").arg(escaped(text));
}

/// Both cells are HTML.
QString row(const QString& title, const QString& content) {
  return QStringLiteral("<tr><td width=\"28%\"><b>%1</b></td><td>%2</td></tr>").arg(title, content);
}

QString table(const QString& rows) {
  return QStringLiteral("<table width=\"100%\" cellspacing=\"0\" cellpadding=\"5\">%1</table>")
      .arg(rows);
}

/// What becomes of one kind of things.
QString fate(const QString& sign, const char* title, Keys keys) {
  QString items;
  for (const char* key : keys)
    items += QStringLiteral("<li>%1</li>").arg(escaped(localised(key)));
  return row(sign + QStringLiteral("&nbsp;") + escaped(localised(title)),
             QStringLiteral("<ul>%1</ul>").arg(items));
}

QString direction(const char* title, Keys kept, Keys changed, Keys lost) {
  return heading(title) +
         table(fate(QStringLiteral("✓"), translatable("Kept"), kept) +
               fate(QStringLiteral("⚠︎"), translatable("Changed, with a warning"), changed) +
               fate(QStringLiteral("✗"), translatable("Not kept, without a warning"), lost));
}

QString wavToAiff() {
  return direction(
      translatable("From WAV to AIFF"),
      {samples,
       translatable("The first two loops, to the frame: as sustain and release loop, forward or "
                    "back and forth."),
       translatable("Cue points, as markers; at the start or end of a loop its marker stands for "
                    "them."),
       tuning, ranges},
      {translatable("Backward loops and loops of unknown types become forward loops."),
       translatable("Loops with a play count play endlessly."),
       translatable("The third loop and all after it become markers only."),
       translatable("Loops without length or behind the end of the sound are left out."),
       translatable("An incomplete last frame is left out.")},
      {translatable("Names of cue points, texts such as comments, and all other data of the file."),
       behindEnd, limited,
       translatable("The tuning in the inst chunk where the smpl chunk names another root key."),
       translatable("Markers beyond the 32,766 that AIFF can number.")});
}

QString aiffToWav() {
  return direction(
      translatable("From AIFF to WAV"),
      {samples, translatable("Sustain and release loop, to the frame, forward or back and forth."),
       translatable("Markers that belong to no loop, as cue points."), tuning, ranges},
      {translatable("Sample rates with a fraction are rounded to whole Hz."),
       translatable("Loops of unknown types become forward loops."),
       translatable("Loops whose markers are missing, and loops without length, are left out."),
       translatable("A gain outside −128 to 127 dB is limited."),
       translatable("Of a file that holds less sound than it declares, what is there is "
                    "converted.")},
      {translatable("Names of markers, texts such as comments, and all other data of the file."),
       behindEnd, limited,
       translatable("That a loop was the release loop, where there is no sustain loop.")});
}

/// The title of a command or option, without its mnemonic.
QString plainTitle(QString title) {
  return title.remove(QLatin1Char('&')).remove(QStringLiteral("…")).trimmed();
}

QString outputs() {
  const auto withOption = [](const char* text, const char* option) {
    const QString title = plainTitle(qtText(localised(option)));
    return paragraph(fillText(localised(text), {title.toStdString()}));
  };
  return heading(translatable("Where outputs go")) +
         paragraph(localised("Beside the original under the same name: “song.wav” becomes "
                             "“song.aif”, and the other way round.")) +
         withOption(translatable("With “%@” they go into that folder, which is made beside the "
                                 "original."),
                    "Write into a &subfolder named AIFF or WAV") +
         withOption(translatable("Where the name is taken, a number is added, such as “song "
                                 "(1).aif”. With “%@” the file of that name is replaced."),
                    "&Replace existing files") +
         paragraph(localised("Originals are only read. Before an output replaces another file that "
                             "is to be converted, Corvana asks."));
}

QString inputs() {
  return heading(translatable("What is converted")) +
         paragraph(
             localised("Folders are searched in depth for .wav, .wave, .aif, .aiff and .aifc. "
                       "Hidden files and folders named AIFF or WAV are left out.")) +
         paragraph(localised("Floating-point and compressed sound, damaged files and more than 4 "
                             "GB cannot be converted; the log says why (✗)."));
}

QString keys(const QMenuBar& menus) {
  QString rows;
  for (const QAction* menu : menus.actions())
    for (const QAction* action : menu->menu()->actions())
      if (!action->shortcut().isEmpty())
        rows += row(action->shortcut().toString(QKeySequence::NativeText).toHtmlEscaped(),
                    plainTitle(action->text()).toHtmlEscaped());
  return heading(translatable("Keys")) + table(rows);
}

}  // namespace

QString helpText(const QMenuBar& menus, const QColor& line) {
  const QString style = QStringLiteral(
                            "<style>h3 { margin-bottom: 6px; } td { border-top: 1px solid %1; } "
                            "ul { margin: 0; -qt-list-indent: 1; }</style>")
                            .arg(line.name());
  return style +
         paragraph(
             localised("Drop files and folders on the window, and they are converted at once. "
                       "The log has one entry for each file, with its warnings.")) +
         wavToAiff() + aiffToWav() + outputs() + inputs() + keys(menus);
}

}  // namespace corvana
