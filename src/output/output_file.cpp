#include "output/output_file.hpp"

#include <optional>
#include <utility>

#include "vocabulary/errors.hpp"

namespace corvana {
namespace {

/// Bytes. Pieces that together stay below are worth less than a call of the system.
constexpr std::size_t maxWaitingSize = 4096;

/// Bytes. Reserving room does not pay for less.
constexpr std::uint64_t minReservedSize = 1'048'576;

/// Absent when the name is taken. A missing folder is the rare case, so it is made on demand.
std::optional<FileDescriptor> createInFolder(const std::filesystem::path& path) {
  try {
    return createNewFile(path);
  } catch (const FileError& error) {
    if (error.code() != std::errc::no_such_file_or_directory &&
        error.code() != std::errc::not_a_directory)
      throw ConversionError::writeFailed(path.native());
  }
  createFolders(path.parent_path());
  try {
    return createNewFile(path);
  } catch (const FileError&) {
    throw ConversionError::writeFailed(path.native());
  }
}

FileDescriptor createOutput(const OutputTarget& target) {
  std::optional<FileDescriptor> file = createInFolder(target.url);
  if (!file && target.replaceExisting && !mayLeadTo(target.url, target.input)) {
    removeFile(target.url);
    file = createInFolder(target.url);
  }
  // Still taken: somebody else made a file of this name in the meantime. It is theirs.
  if (!file) throw ConversionError::writeFailed(target.url.native());
  return std::move(*file);
}

}  // namespace

OutputFile::OutputFile(const OutputTarget& target)
    : path_(target.url), file_(createOutput(target)) {}

OutputFile::~OutputFile() {
  if (file_.number() < 0) return;
  try {
    write({});
  } catch (const ConversionError&) {
    // The conversion has failed already, for a reason that is known.
  }
  releaseSpace(file_);
}

void OutputFile::reserve(std::uint64_t size) {
  if (size > minReservedSize) reserveSpace(file_, size);
}

void OutputFile::append(ByteView bytes) {
  if (waiting_.size() + bytes.size() <= maxWaitingSize) {
    appendBytes(waiting_, bytes);
  } else {
    write(bytes);
  }
}

void OutputFile::close() {
  write({});
  try {
    closeFile(std::move(file_), path_);
  } catch (const FileError&) {
    throw ConversionError::writeFailed(path_.native());
  }
}

void OutputFile::write(ByteView bytes) {
  const ByteBuffer waiting = std::exchange(waiting_, {});
  try {
    writeAll(file_, waiting, bytes, path_);
  } catch (const FileError&) {
    throw ConversionError::writeFailed(path_.native());
  }
}

}  // namespace corvana
