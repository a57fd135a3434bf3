// The outputs that a batch has made so far. Where it is only rehearsed, the disk knows nothing of
// them; here they are found all the same.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <tuple>

#include "convert/conversion_plan.hpp"
#include "output/output_file.hpp"
#include "platform/folder.hpp"

namespace corvana {

/// Where outputs go: a folder that exists, and the relative path of those that are still to be
/// made inside it.
struct OutputPlace {
  const Folder& folder;
  std::filesystem::path missingFolders = {};

  /// Whether the name is taken on the disk.
  bool nameExists(const std::string& name) const {
    return missingFolders.empty() && folder.nameExists(name);
  }
};

/// Any thread.
class RunOutputs {
 public:
  /// Whether the name is taken by an output of this batch, or by a folder made for one.
  bool contain(const OutputPlace& place, const std::string& name) const;

  /// An output has been made.
  void add(const OutputPlace& place, const std::string& name);

  /// Takes the output of `plan` for made. Fails as writing it would, as far as that shows without
  /// touching anything.
  void rehearse(const OutputTarget& target, const ConversionPlan& plan);

  /// What a rehearsed batch would by now find where the file `name` is: the output that has
  /// replaced it, with zeros for samples. Absent where none has.
  std::optional<FileDescriptor> openReplaced(const Folder& folder, const std::string& name,
                                             const std::filesystem::path& path) const;

 private:
  /// The bytes of an output around its samples.
  struct Content {
    ByteBuffer header, trailer;
    std::uint64_t sampleBytes = 0;
    std::optional<FileTimes> times;
  };
  struct Item {
    bool isFolder = false;
    std::optional<Content> content;  ///< of one that has replaced a file
  };
  /// A folder of the disk, and a path below it.
  using Name = std::tuple<dev_t, ino_t, std::string>;

  static Name nameIn(const Folder& folder, const std::filesystem::path& path);
  const Item* find(const Name& name) const;
  void rehearseFolders(const OutputTarget& target);

  mutable std::mutex mutex_;
  std::map<Name, Item> items_;
  bool hasReplaced_ = false;
};

}  // namespace corvana
