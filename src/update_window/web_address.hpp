// Web addresses that come from outside: only http and https may be opened, so that a version
// file can neither start a program nor open a local file.
#pragma once

#include <QString>
#include <QUrl>
#include <optional>

namespace corvana {

/// The http or https address that `text`, white space around it aside, spells. No value when it
/// is anything else.
std::optional<QUrl> webAddress(const QString& text);

/// Opens a web address in the user's browser. Does nothing with any other text.
void openURLString(const QString& text);

}  // namespace corvana
