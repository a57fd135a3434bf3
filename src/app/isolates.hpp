// Names in scripts of the other direction, which would turn around what stands beside them: on the
// screen each part of an entry keeps to itself, by marks that no other text has.
#pragma once

#include <QRegularExpression>
#include <QString>
#include <Qt>

#include "batch/batch_driver.hpp"

namespace corvana {

/// The entry for the screen (LogEntry::screenText). Its names and figures are set apart where they
/// could get mixed up in an interface of that direction.
QString isolatedText(const LogEntry& entry, Qt::LayoutDirection direction);

/// Without the marks: again what LogEntry::screenText gave.
QString withoutIsolates(QString text);

/// Finds `text` whatever marks stand in it.
QRegularExpression findingText(const QString& text);

}  // namespace corvana
