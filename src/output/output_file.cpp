#include "output/output_file.hpp"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <utility>

#include "platform/ending.hpp"
#include "vocabulary/errors.hpp"

namespace corvana {
namespace {

/// Bytes. Pieces that together stay below are worth less than a call of the system.
constexpr std::size_t maxWaitingSize = 4096;

/// Bytes. Room is reserved ahead of the writing in such steps: a program that is killed leaves
/// no more than one of them.
constexpr std::uint64_t maxReservation = 64 << 20;

/// Bytes. Reserving room does not pay for less.
constexpr std::uint64_t minReservation = 1 << 20;

/// Under which a safe file is written.
std::string hiddenName(unsigned number) {
  return ".corvana-" + std::to_string(processNumber()) + "-" + std::to_string(number);
}

}  // namespace

void checkOutput(const OutputTarget& target) {
  const Folder& folder = target.folder;
  const bool isTaken = folder.nameExists(target.name);
  int obstacle = target.safe ? folder.obstacleToMaking(hiddenName(0)) : 0;
  if (obstacle == 0) obstacle = folder.obstacleToMaking(target.name);
  if (obstacle != 0 && (target.safe || !isTaken))
    throw ConversionError::writeFailed(target.url().native(), obstacle);
  if (!isTaken) return;
  folder.checkReplaceable(target.name);
  if (obstacle != 0) failReplacing(obstacle, target.url());
}

template <typename Step>
auto OutputFile::attempt(const Step& step) const {
  try {
    return step();
  } catch (const FileError& error) {
    fail(error.code().value());
  }
}

OutputFile::OutputFile(const OutputTarget& target) : target_(target) {
  if (!target_.missingFolders.empty())
    madeFolder_ = makeFolders(target_.folder, target_.missingFolders);
  if (target_.safe) {
    createHidden();
  } else {
    createInPlace();
  }
}

OutputFile::~OutputFile() {
  if (!hiddenName_.empty()) {
    folder().discard(hiddenName_);
    return;
  }
  if (file_.number() < 0) return;
  try {
    write({});
  } catch (const ConversionError&) {
    // The conversion has failed already, for a reason that is known.
  }
  releaseSpace(file_);
}

void OutputFile::createInPlace() {
  std::optional<FileDescriptor> file = create(target_.name);
  if (!file && mayReplace()) {
    folder().removeFile(target_.name);
    file = create(target_.name);
  }
  // Still taken: somebody else made a file of this name in the meantime. It is theirs.
  if (!file) fail(EEXIST);
  file_ = std::move(*file);
}

void OutputFile::createHidden() {
  static std::atomic<unsigned> counter = 0;
  for (;;) {
    std::string name = hiddenName(++counter);
    std::optional<FileDescriptor> file = create(name);
    if (!file) continue;
    unfinished_.emplace(folder().number(), name);
    hiddenName_ = std::move(name);
    file_ = std::move(*file);
    return;
  }
}

std::optional<FileDescriptor> OutputFile::create(const std::string& name) {
  return attempt([&] { return folder().createNewFile(name, target_.permissions); });
}

bool OutputFile::mayReplace() const {
  return target_.replaceExisting && !folder().mayLeadTo(target_.name, target_.input);
}

void OutputFile::reserve(std::uint64_t size) {
  size_ = size;
}

void OutputFile::append(ByteView bytes) {
  if (waiting_.size() + bytes.size() <= maxWaitingSize) {
    appendBytes(waiting_, bytes);
  } else {
    write(bytes);
  }
}

void OutputFile::write(ByteView bytes) {
  const ByteBuffer waiting = std::exchange(waiting_, {});
  const std::uint64_t end = written_ + waiting.size() + bytes.size();
  if (end > reserved_ && size_ > written_ + minReservation) {
    const std::uint64_t step = std::min(maxReservation, size_ - written_);
    reserveSpace(file_, written_, step);
    reserved_ = written_ + step;
  }
  attempt([&] { writeAll(file_, waiting, bytes, target_.url()); });
  written_ = end;
}

void OutputFile::close() {
  write({});
  if (target_.times) timesError_ = setTimes(file_, *target_.times);
  if (target_.safe) attempt([this] { syncFile(file_, target_.url()); });
  attempt([this] { closeFile(std::move(file_), target_.url()); });
  if (target_.safe) putInPlace();
}

void OutputFile::putInPlace() {
  if (!attempt([this] { return folder().moveToFreeName(hiddenName_, target_.name); })) {
    if (!mayReplace()) fail(EEXIST);
    folder().moveOver(hiddenName_, target_.name);
  }
  hiddenName_.clear();
  unfinished_.reset();
  attempt([this] { folder().sync(); });
}

void OutputFile::fail(int errorNumber) const {
  throw ConversionError::writeFailed(target_.url().native(), errorNumber);
}

}  // namespace corvana
