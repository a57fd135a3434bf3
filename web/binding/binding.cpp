// What JavaScript sees of the library: a file in memory, what is in it, and its output block by
// block. One file is open at a time; who needs several makes several instances of the module, each
// with a memory of its own. Records leave as JSON, texts as UTF-8.
//
// Nothing here throws into JavaScript: where memory is short the answer is an error, or a pointer
// is null. What a function hands out is good until the next call of any function.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>
#include <utility>
#include <vector>

#include "convert/sample_kernels.hpp"
#include "inspect/file_description.hpp"
#include "inspect/format_text.hpp"
#include "inspect/samples.hpp"
#include "json/records.hpp"
#include "vocabulary/failure.hpp"
#include "vocabulary/file_names.hpp"
#include "vocabulary/messages.hpp"
#include "vocabulary/note_name.hpp"
#include "vocabulary/text_format.hpp"

/// A function of the module, for JavaScript.
#define CORVANA_EXPORT(name) extern "C" __attribute__((export_name(#name)))
/// A function of JavaScript, for the module.
#define CORVANA_IMPORT(name) \
  extern "C" __attribute__((import_module("corvana"), import_name(#name)))

// They put their answer where `makeText` says.
CORVANA_IMPORT(localised) void hostLocalised(const char* key);
CORVANA_IMPORT(localisedCount)
void hostLocalisedCount(const char* singular, const char* plural, double count);
/// Whether an output may have the name that is the text.
CORVANA_IMPORT(mayTake) bool hostMayTake();

namespace {

using namespace corvana;

/// The text that goes from one side to the other.
std::string text;

/// Texts in the language that JavaScript is set to.
class HostLanguage : public Language {
 public:
  std::string localised(const char* key) const override {
    hostLocalised(key);
    return std::exchange(text, {});
  }
  std::string localisedCount(const char* singular, const char* plural,
                             std::int64_t count) const override {
    hostLocalisedCount(singular, plural, static_cast<double>(count));
    return std::exchange(text, {});
  }
};

const HostLanguage language;

/// Bytes. The heap gives nothing of 2 GB and more. Larger files have memory that nobody can give
/// back; JavaScript leaves such an instance to its collector.
constexpr std::size_t mostOfHeap = 1 << 30;

/// Memory that nothing fills with zeros first, null where there is none.
std::uint8_t* makeRoom(std::size_t size) {
  if (size <= mostOfHeap)
    return static_cast<std::uint8_t*>(std::malloc(std::max<std::size_t>(size, 1)));
  auto* const start = static_cast<std::uint8_t*>(::sbrk(0));
  for (std::size_t made = 0; made < size;) {
    const std::size_t step = std::min(mostOfHeap, size - made);
    if (::sbrk(static_cast<std::intptr_t>(step)) != start + made) return nullptr;
    made += step;
  }
  return start;
}

/// The file that is open.
struct OpenFile {
  std::uint8_t* memory = nullptr;  ///< of the heap where `size` is at most mostOfHeap
  std::size_t size = 0;
  std::optional<FileDescription> description = {};
  std::optional<ConversionPlan> plan = {};
  std::uint32_t framesDone = 0;
  enum class Next { header, samples, trailer, nothing } next = Next::nothing;
  ByteBuffer block = {};
  ByteView current = {};  ///< what nextBlock has given

  ByteView content() const { return {memory, size}; }
  const FileDescription& describe() {
    if (!description) description = describeFile(content());
    return *description;
  }
  ByteView nextBlock();
};

OpenFile file;
std::vector<float> columns;

/// Frames of about a block's size, or the rest.
ByteView nextSamples() {
  constexpr std::uint64_t blockSize = 1 << 20;
  const SampleRun& samples = file.plan->samples;
  const std::uint64_t most = std::max<std::uint64_t>(blockSize / samples.outputFrameSize(), 1);
  const auto frames = static_cast<std::uint32_t>(
      std::min<std::uint64_t>(most, samples.frameCount - file.framesDone));
  file.block.resize(static_cast<std::size_t>(frames * samples.outputFrameSize()));
  const std::uint64_t offset = samples.offset + file.framesDone * samples.sourceFrameSize();
  convertSamples(samples.conversion, file.content().subspan(static_cast<std::size_t>(offset)),
                 file.block);
  file.framesDone += frames;
  return file.block;
}

/// Empty at the end of the output.
ByteView OpenFile::nextBlock() {
  switch (next) {
    case Next::header:
      next = Next::samples;
      return plan->header;
    case Next::samples:
      if (framesDone < plan->samples.frameCount) return nextSamples();
      next = Next::nothing;
      return plan->trailer;
    default:
      return {};
  }
}

/// The texts that JavaScript has put down, between them a byte that UTF-8 does not have.
std::vector<std::string> takeTexts() {
  std::vector<std::string> texts(1);
  for (const char letter : std::exchange(text, {}))
    if (letter == '\xFF')
      texts.emplace_back();
    else
      texts.back() += letter;
  return texts;
}

/// What options.js makes of the options: a bit for each thing, and a MIDI note, or -1 for none.
ConversionOptions optionsOf(std::uint32_t asked, int rootKey) {
  const auto isAsked = [asked](std::uint32_t bit) { return (asked & bit) != 0; };
  ConversionOptions options;
  options.anyEncoding = isAsked(1);
  options.reversible = isAsked(2);
  if (isAsked(4)) options.loops = LoopChoice::first;
  if (isAsked(8)) options.loops = LoopChoice::none;
  options.keepNames = isAsked(16);
  options.keepTexts = isAsked(32);
  if (rootKey >= 0) options.rootKey = static_cast<std::uint8_t>(rootKey);
  return options;
}

/// Whether there was memory enough for it.
template <typename Action>
bool done(const Action& action) {
  try {
    action();
    return true;
  } catch (const std::exception&) {  // bad_alloc, or length_error for what no memory could hold
    return false;
  }
}

}  // namespace

// Texts and numbers that go either way.

/// Makes room for a text of so many bytes, which is the next call's; null without memory.
CORVANA_EXPORT(makeText) char* makeText(std::size_t size) {
  return done([&] { text.assign(size, '\0'); }) ? text.data() : nullptr;
}

CORVANA_EXPORT(textAt) const char* textAt() {
  return text.data();
}

CORVANA_EXPORT(textSize) std::size_t textSize() {
  return text.size();
}

// The file.

CORVANA_EXPORT(release) void release() {
  if (file.size <= mostOfHeap) std::free(file.memory);
  file = {};
}

/// Makes room for a file in place of the present one, uninitialised; null without memory.
CORVANA_EXPORT(reserve) std::uint8_t* reserve(std::size_t size) {
  release();
  file.memory = makeRoom(size);
  file.size = file.memory == nullptr ? 0 : size;
  return file.memory;
}

/// What the file holds, as `corvana-cli info --json` writes it.
CORVANA_EXPORT(info) bool info(int middleC, std::uint32_t asked, int rootKey) {
  return done([&] {
    Json object = Json::object();
    addDescription(object, file.describe(), middleC);
    addProspect(object, prospectOf(file.content(), optionsOf(asked, rootKey)), language);
    text = textOf(object);
  });
}

/// Format and encoding in a few words.
CORVANA_EXPORT(describe) bool describe() {
  return done([] { text = formatText(file.describe(), language); });
}

/// Where the samples lie and how they are stored; null where a waveform cannot be drawn of them.
CORVANA_EXPORT(layout) bool layout() {
  return done([] {
    const FileDescription& description = file.describe();
    const auto& format = description.format;
    Json object;
    if (format && format->frameBytes() > 0 && sampleReader(*format) != nullptr)
      object = {{"dataOffset", description.dataOffset},
                {"dataSize", description.dataSize},
                {"frameBytes", format->frameBytes()},
                {"channels", format->channels},
                {"sampleBytes", format->sampleBytes},
                {"isFloatingPoint", format->kind == SampleKind::floatingPoint},
                {"isBigEndian", format->order == ByteOrder::big},
                {"isUnsigned", format->isUnsigned}};
    text = textOf(object);
  });
}

/// Plans the conversion and tells what it comes to, or its error. From then on `nextBlock` gives
/// the output.
CORVANA_EXPORT(plan) bool plan(std::uint32_t asked, int rootKey) {
  return done([&] {
    Json object;
    file.plan.reset();
    file.next = OpenFile::Next::nothing;
    try {
      const ConversionPlan& plan =
          file.plan.emplace(planConversion(file.content(), optionsOf(asked, rootKey)));
      object["direction"] = directionCode(plan.makesWAV());
      addOutput(object, plan.makesWAV(), plan.summary, plan.samples.frameCount, plan.outputSize());
      object["summary"] = makeSummary(plan.summary, language);
      object["warnings"] = jsonOf(plan.warnings, language);
      object["leftOut"] = plan.leftOut;
      file.framesDone = 0;
      file.next = OpenFile::Next::header;
    } catch (const ConversionError& error) {
      object["error"] = jsonOf(failureOf(error, language));
    }
    text = textOf(object);
  });
}

/// The address of the next block of the output, of blockSize() bytes; null without memory.
CORVANA_EXPORT(nextBlock) const std::uint8_t* nextBlock() {
  const bool isThere = done([] { file.current = file.nextBlock(); });
  return isThere ? file.current.data() : nullptr;
}

/// 0 where the output has ended.
CORVANA_EXPORT(blockSize) std::size_t blockSize() {
  return file.current.size();
}

/// The picture of a stretch of the file, which holds whole frames: two numbers a column, lowest and
/// highest. The format is as in `layout`; 1 and 0 stand for true and false. Null where there is
/// none, or no memory for it.
CORVANA_EXPORT(waveform)
const float* drawWaveform(double offset, double size, std::uint32_t channels,
                          std::uint32_t sampleBytes, bool isFloatingPoint, bool isBigEndian,
                          bool isUnsigned, std::size_t count) {
  const SoundFormat format = {
      .kind = isFloatingPoint ? SampleKind::floatingPoint : SampleKind::integer,
      .channels = channels,
      .sampleBytes = sampleBytes,
      .order = isBigEndian ? ByteOrder::big : ByteOrder::little,
      .isUnsigned = isUnsigned};
  const auto at = static_cast<std::size_t>(offset);
  if (at > file.size) return nullptr;
  const std::size_t most = std::min(static_cast<std::size_t>(size), file.size - at);
  columns.clear();
  const bool isDone = done([&] {
    for (const Extent& extent : waveform(file.content().subspan(at, most), format, count)) {
      columns.push_back(static_cast<float>(extent.lowest));
      columns.push_back(static_cast<float>(extent.highest));
    }
  });
  return isDone && !columns.empty() ? columns.data() : nullptr;
}

// Names and texts. The text holds what goes in, and then what comes out.

CORVANA_EXPORT(hasAudioExtension) bool textHasAudioExtension() {
  return hasAudioExtension(text);
}

CORVANA_EXPORT(isOutputFolder) bool textIsOutputFolder() {
  return isOutputFolder(text);
}

CORVANA_EXPORT(isPackageName) bool textIsPackageName() {
  return isPackageName(text);
}

/// Gives the key that the name of a file tells as the text, which is empty without one.
CORVANA_EXPORT(rootKeyInName) bool keyInName(int middleC) {
  return done([&] {
    const auto key = noteInFileName(text, middleC);
    text = key ? std::to_string(*key) : std::string();
  });
}

CORVANA_EXPORT(outputSubfolder) bool subfolderForOutput(bool isAIFF) {
  return done([&] { text = outputSubfolder(isAIFF); });
}

/// `hostMayTake` is asked with each name as the text.
CORVANA_EXPORT(freeOutputName) bool nameForOutput(bool isAIFF) {
  return done([&] {
    const std::string input = std::exchange(text, {});
    text = freeOutputName(input, isAIFF, [](const std::string& name) {
      text = name;
      return hostMayTake();
    });
  });
}

/// Of input name, output name, summary and warnings: the log's lines, as a list in JSON.
CORVANA_EXPORT(convertedLines) bool linesOfConverted() {
  return done([] {
    std::vector<std::string> texts = takeTexts();
    texts.resize(std::max<std::size_t>(texts.size(), 3));
    const std::vector<std::string> warnings(texts.begin() + 3, texts.end());
    text = textOf(convertedLines(texts[0], texts[1], texts[2], warnings));
  });
}

/// Of input name and reason.
CORVANA_EXPORT(failureLine) bool lineOfFailure() {
  return done([] {
    std::vector<std::string> texts = takeTexts();
    texts.resize(2);
    text = failureLine(texts[0], texts[1]);
  });
}

/// Of a text with places and the texts for them.
CORVANA_EXPORT(fillText) bool filledText() {
  return done([] {
    const std::vector<std::string> texts = takeTexts();
    const std::vector<std::string_view> values(texts.begin() + 1, texts.end());
    text = fillText(texts[0], values);
  });
}
