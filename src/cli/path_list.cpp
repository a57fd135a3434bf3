#include "cli/path_list.hpp"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string_view>

#include "platform/files.hpp"

namespace corvana {
namespace {

/// Bytes. No system takes a path as long as this: what is longer is no list of paths.
constexpr std::size_t maxPathLength = 65'536;

/// Takes a list apart that comes piece by piece.
class PathSplitter {
 public:
  PathSplitter(const std::string& name, char separator, std::vector<std::filesystem::path>& paths)
      : name_(name), separator_(separator), paths_(paths) {}

  void add(std::string_view piece) {
    for (std::size_t end = 0; (end = piece.find(separator_)) != std::string_view::npos;) {
      extend(piece.substr(0, end));
      finish();
      piece.remove_prefix(end + 1);
    }
    extend(piece);
  }

  /// The last path may do without its separator.
  void finish() {
    if (!path_.empty()) paths_.emplace_back(path_);
    path_.clear();
    ++number_;
  }

 private:
  void extend(std::string_view part) {
    if (path_.size() + part.size() > maxPathLength)
      fail(separator_ == '\0' ? "is longer than any path; a list of lines is read without --null"
                              : "is longer than any path");
    if (part.find('\0') != std::string_view::npos)
      fail("holds a NUL byte; a list with NUL bytes between its paths needs --null");
    path_ += part;
  }

  [[noreturn]] void fail(const char* reason) const {
    throw std::runtime_error(name_ + (separator_ == '\0' ? ": path " : ": line ") +
                             std::to_string(number_) + " " + reason);
  }

  const std::string& name_;
  char separator_;
  std::vector<std::filesystem::path>& paths_;
  std::string path_;  ///< as far as it has come
  std::size_t number_ = 1;
};

}  // namespace

void readPathList(const std::string& list, char separator,
                  std::vector<std::filesystem::path>& paths) {
  const bool isStandardInput = list == "-";
  const std::string name = isStandardInput ? "standard input" : list;
  const auto close = [isStandardInput](std::FILE* file) {
    if (!isStandardInput) std::fclose(file);
  };
  const std::unique_ptr<std::FILE, decltype(close)> file(
      isStandardInput ? stdin : std::fopen(list.c_str(), "rb"), close);
  if (!file) failReading(errno, name);

  PathSplitter splitter(name, separator, paths);
  std::string piece(maxPathLength, '\0');
  while (const std::size_t size = std::fread(piece.data(), 1, piece.size(), file.get()))
    splitter.add(std::string_view(piece).substr(0, size));
  if (std::ferror(file.get()) != 0) failReading(errno, name);
  splitter.finish();
}

}  // namespace corvana
