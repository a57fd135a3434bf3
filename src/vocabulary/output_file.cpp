#include "vocabulary/output_file.hpp"

#include <optional>
#include <utility>

#include "vocabulary/errors.hpp"

namespace corvana {
namespace {

/// Absent when the name is taken. A missing folder is the rare case, so it is made on demand.
std::optional<FileDescriptor> createInFolder(const std::filesystem::path& path) {
  try {
    return createNewFile(path);
  } catch (const FileError& error) {
    if (error.code() != std::errc::no_such_file_or_directory &&
        error.code() != std::errc::not_a_directory)
      throw ConversionError::writeFailed(path);
  }
  createFolders(path.parent_path());
  try {
    return createNewFile(path);
  } catch (const FileError&) {
    throw ConversionError::writeFailed(path);
  }
}

FileDescriptor createOutput(const OutputTarget& target) {
  std::optional<FileDescriptor> file = createInFolder(target.url);
  if (!file && target.replaceExisting && !mayLeadTo(target.url, target.input)) {
    removeFile(target.url);
    file = createInFolder(target.url);
  }
  // Still taken: somebody else made a file of this name in the meantime. It is theirs.
  if (!file) throw ConversionError::writeFailed(target.url);
  return std::move(*file);
}

}  // namespace

OutputFile::OutputFile(const OutputTarget& target, ByteBuffer header)
    : path_(target.url), file_(createOutput(target)), header_(std::move(header)) {}

OutputFile::~OutputFile() {
  if (file_.number() < 0) return;
  try {
    append({});
  } catch (const ConversionError&) {
    // The conversion has failed already, for a reason that is known.
  }
  releaseSpace(file_);
}

void OutputFile::expect(std::uint64_t size) {
  reserveSpace(file_, header_.size() + size);
}

void OutputFile::append(ByteView bytes) {
  const ByteBuffer header = std::exchange(header_, {});
  try {
    writeAll(file_, header, bytes, path_);
  } catch (const FileError&) {
    throw ConversionError::writeFailed(path_);
  }
}

void OutputFile::close() {
  append({});
  try {
    closeFile(std::move(file_), path_);
  } catch (const FileError&) {
    throw ConversionError::writeFailed(path_);
  }
}

}  // namespace corvana
