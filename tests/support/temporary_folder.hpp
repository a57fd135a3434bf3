// A folder of its own for one test, removed afterwards.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/folder.hpp"
#include "vocabulary/bytes.hpp"

namespace corvana::test {

namespace fs = std::filesystem;

inline std::string readText(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("no file " + path.native());
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline ByteBuffer readFile(const fs::path& path) {
  const std::string content = readText(path);
  return {content.begin(), content.end()};
}

/// Opens an input by its path alone.
inline InputFile openFile(const fs::path& path) {
  return {Folder(path.parent_path()), path.filename().native(), path};
}

class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = (fs::temp_directory_path() / "corvana-test-XXXXXX").native();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path_ = name;
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code error;
    fs::remove_all(path_, error);
  }

  const fs::path& path() const { return path_; }
  fs::path operator/(const fs::path& name) const { return path_ / name; }

  /// Makes missing folders on the way.
  fs::path write(const fs::path& name, std::string_view content) const {
    fs::create_directories((path_ / name).parent_path());
    std::ofstream(path_ / name, std::ios::binary) << content;
    return path_ / name;
  }
  fs::path write(const fs::path& name, ByteView content) const {
    return write(name, {reinterpret_cast<const char*>(content.data()), content.size()});
  }

  /// The files below, relative and sorted.
  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(path_))
      if (!entry.is_directory()) names.push_back(entry.path().lexically_relative(path_).native());
    std::sort(names.begin(), names.end());
    return names;
  }

 private:
  fs::path path_;
};

}  // namespace corvana::test
