// Between the engine's values (UTF-8 texts, paths of bytes) and the toolkit's.
#pragma once

#include <QString>
#include <QUrl>
#include <filesystem>
#include <string>
#include <vector>

namespace corvana {

/// A text of ours.
inline QString qtText(const std::string& text) {
  return QString::fromStdString(text);
}

/// A text of one line that may hold a file name, which may hold anything (readableLine).
QString screenLine(const std::string& text);

/// The path of a file URL of this machine, byte for byte, even where the name is not UTF-8.
/// Empty for every other URL.
std::filesystem::path pathOfURL(const QUrl& url);

/// The paths of the file URLs among `urls`, in their order.
std::vector<std::filesystem::path> pathsOfURLs(const QList<QUrl>& urls);

/// The file URL of an absolute path, percent-encoded: plain ASCII whatever the name holds.
QString urlTextOfPath(const std::filesystem::path& path);

}  // namespace corvana
