#include <array>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <new>
#include <optional>
#include <set>
#include <thread>
#include <utility>

#include "c/corvana.h"
#include "convert/plan_conversion.hpp"
#include "support/audio_builder.hpp"
#include "support/conversion.hpp"

static thread_local int allocationsLeft = -1;  // -1: as many as there is memory for

void* operator new(std::size_t size) {
  if (allocationsLeft == 0) throw std::bad_alloc();
  if (allocationsLeft > 0) --allocationsLeft;
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
// Inlined, these look to GCC as if a pointer of new were freed.
[[gnu::noinline]] void operator delete(void* memory) noexcept {
  std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace corvana {
namespace {

using namespace test;

const ByteBuffer guitar =
    wav({fmt({.rate = 48000, .blockAlign = 1, .bits = 8}), data(ByteBuffer(100, 3)),
         smpl(60, 0x40000000, {{9, 2, 5, 9, 0}, {0, 1, 10, 19, 3}, {0, 77, 10, 19, 0}}),
         cue({{77, 1}, {5, 4}}), inst(InstrumentChunk{60, -20, -6, 1, 100, 2, 120}),
         bytes("'LIST' 12 00 00 00 'adtl' 'labl' 06 00 00 00 05 00 00 00 'X' 00")});
const ByteBuffer pad =
    aiff({comm({.frames = 60}), ssnd(ByteBuffer(120, 4)),
          mark({{1, 0, "a"}, {2, 50, std::string("b\0c", 3)}}),
          inst(AiffInstrument{62, 3, 0, 127, 1, 127, 300, {1, 1, 2}, {2, 1, 7}})});

/// A struct whose size is set and all else is not.
template <typename Record>
Record sized() {
  Record record;
  std::memset(&record, 0xEE, sizeof record);
  record.struct_size = sizeof record;
  return record;
}

template <typename... Values>
std::string spaced(const Values&... values) {
  return (line(values, " ") + ...);
}

std::string described(ByteView content) {
  corvana_file* file = nullptr;
  auto error = sized<corvana_error>();
  if (corvana_file_read(content.data(), content.size(), &file, &error) != CORVANA_OK)
    return spaced(error.code, error.text);
  auto i = sized<corvana_file_info>();
  EXPECT_EQ(corvana_file_get_info(file, &i), CORVANA_OK);
  std::string text = spaced(
      i.format, i.sample_kind, i.channels, i.bits, i.sample_bytes, i.is_big_endian, i.is_unsigned,
      i.sample_rate, i.frames, i.data_size, i.data_offset, i.loop_count, i.marker_count, "| root",
      i.has_root_key, i.root_key, i.root_cents, "| smpl", i.has_sampler, i.unity_note,
      i.pitch_fraction, "| inst", i.has_instrument, i.base_note, i.detune, i.low_note, i.high_note,
      i.low_velocity, i.high_velocity, i.gain, i.is_contradictory);
  auto l = sized<corvana_loop>();
  for (std::size_t k = 0; corvana_file_get_loop(file, k, &l) == CORVANA_OK; ++k)
    text += "| " + spaced(l.number, l.role, l.kind, l.type, l.start,
                          l.end == CORVANA_NONE ? "none" : line(l.end), l.play_count, l.fraction,
                          l.cue_id, l.begin_marker, l.end_marker);
  auto m = sized<corvana_marker>();
  for (std::size_t k = 0; corvana_file_get_marker(file, k, &m) == CORVANA_OK; ++k)
    text += "| " + spaced(m.id, m.position, std::string(m.name, m.name_size), m.note_size,
                          m.name[m.name_size] == 0 && m.length == CORVANA_NONE);
  corvana_file_free(file);
  return text;
}

TEST(C, TellsWhatAFileHolds) {
  EXPECT_EQ(described(guitar),
            "1 1 1 8 1 0 1 48000 100 100 44 3 2 | root 1 60 -20 | smpl 1 60 1073741824 "
            "| inst 1 60 -20 1 100 2 120 -6 1 | 1 0 3 2 5 9 0 13 9 0 0 "
            "| 2 0 2 1 10 19 3 13 0 0 0 | 3 0 0 77 10 19 0 13 0 0 0 | 77 1  0 1 | 5 4 X 0 1 ");
  EXPECT_EQ(described(pad),
            "2 1 1 16 2 1 0 44100 60 120 54 2 2 | root 1 62 3 | smpl 0 0 0 "
            "| inst 1 62 3 0 127 1 127 300 0 | 0 1 1 1 0 49 0 0 0 1 2 | 0 2 2 2 0 none 0 0 0 1 7 "
            "| 1 0 a 0 1 | 2 50 " +
                std::string("b\0c", 3) + " 0 1 ");
  EXPECT_EQ(described({}), "file-too-short Unsupported format: file is too short ");
  EXPECT_EQ(described(ByteBuffer(12)), "unknown-file Unsupported format: neither WAV nor AIFF ");
  EXPECT_EQ(described(text("RIFF....AVI ")), "not-wave The RIFF file is not a WAVE file. ");
  EXPECT_EQ(described(text("FORM....8SVX")), "not-aiff Not an AIFF file. ");
}

int append(void* user, const void* bytes, std::size_t size) {
  static_cast<std::string*>(user)->append(static_cast<const char*>(bytes), size);
  return 0;
}

std::string converted(ByteView input, const corvana_plan_options* options = nullptr) {
  corvana_plan* plan = nullptr;
  auto error = sized<corvana_error>();
  if ((options ? corvana_plan_make_with(input.data(), input.size(), options, &plan, &error)
               : corvana_plan_make(input.data(), input.size(), &plan, &error)) != CORVANA_OK)
    return spaced(error.code, error.text);
  auto info = sized<corvana_plan_info>();
  EXPECT_EQ(corvana_plan_get_info(plan, &info), CORVANA_OK);
  std::string result = spaced(info.format, info.frames, info.sample_kind, info.is_restored,
                              info.left_out_count, std::string(info.summary));
  auto warning = sized<corvana_warning>();
  for (std::size_t i = 0; corvana_plan_get_warning(plan, i, &warning) == CORVANA_OK; ++i)
    result += spaced(warning.code, std::string(warning.text, warning.text_size));
  auto chunk = sized<corvana_left_out>();
  for (std::size_t i = 0; corvana_plan_get_left_out(plan, i, &chunk) == CORVANA_OK; ++i)
    result += spaced(chunk.chunk);
  std::string room(static_cast<std::size_t>(info.output_size), ' '), parts;
  EXPECT_EQ(
      corvana_plan_carry_out(plan, input.data(), input.size(), room.data(), room.size(), &error),
      CORVANA_OK);
  EXPECT_EQ(corvana_plan_carry_out_to(plan, input.data(), input.size(), append, &parts, &error),
            CORVANA_OK);
  EXPECT_EQ(room, parts);
  corvana_plan_free(plan);
  return result + parts;
}

std::string convertedByTheEngine(ByteView input, const ConversionOptions& options = {}) {
  try {
    const ConversionPlan plan = planConversion(input, options);
    constexpr std::array kinds = {CORVANA_SAMPLES_INTEGER, CORVANA_SAMPLES_FLOATING_POINT,
                                  CORVANA_SAMPLES_A_LAW, CORVANA_SAMPLES_MU_LAW};
    std::string result =
        spaced(plan.content.index() == 0 ? CORVANA_AIFF : CORVANA_WAV, plan.samples.frameCount,
               kinds.at(static_cast<std::size_t>(plan.summary.encoding)), plan.summary.isRestored,
               plan.leftOut.size(), makeSummary(plan.summary, english));
    for (const Warning& warning : plan.warnings)
      result += spaced(warningCode(warning.kind), warningText(warning, english));
    for (const std::string& chunk : plan.leftOut)
      result += spaced(chunk);
    const ByteBuffer output = carryOutInMemory(plan, input);
    return result + std::string(output.begin(), output.end());
  } catch (const ConversionError& error) {
    return spaced(errorCode(error), errorDescription(error, english));
  }
}

TEST(C, ConvertsWhateverIsLeftOfAFileLikeTheEngine) {
  for (const ByteView whole : {ByteView(guitar), ByteView(pad)})
    for (std::size_t size = 0; size <= whole.size(); ++size) {
      EXPECT_EQ(converted(whole.first(size)), convertedByTheEngine(whole.first(size)));
      EXPECT_NE(described(whole.first(size)), "");
    }
}

TEST(C, ConvertsByOptionsLikeTheEngine) {
  struct Grown {
    corvana_plan_options options;
    std::uint64_t newer;
  };
  const std::size_t size = sizeof(corvana_plan_options), grown = sizeof(Grown);
  const std::pair<Grown, std::optional<ConversionOptions>> cases[] = {
      {{{size, 1, CORVANA_LOOPS_FIRST, 0, 200, 0, CORVANA_KEEP_NAMES}, 9},
       {{.anyEncoding = true, .loops = LoopChoice::first, .keepNames = true}}},
      {{{size, 1, CORVANA_LOOPS_NONE, 1, 127, 0, CORVANA_KEEP_TEXTS}, 9},
       {{.anyEncoding = true, .loops = LoopChoice::none, .rootKey = 127, .keepTexts = true}}},
      {{{grown, 0, 0, 1, 0, 0, 3}, 0}, {{.rootKey = 0, .keepNames = true, .keepTexts = true}}},
      {{{size, 0, 0, 0, 0, 1, 0}, 9}, {{.reversible = true}}},
      {{{grown, 0, 0, 0, 0, 0, 0}, 1}, {}},  // a newer option
      {{{size - 1, 0, 0, 0, 0, 0, 0}, 0}, {}},
      {{{size, 2, 0, 0, 0, 0, 0}, 0}, {}},
      {{{size, 0, 3, 0, 0, 0, 0}, 0}, {}},
      {{{size, 0, 0, 2, 0, 0, 0}, 0}, {}},
      {{{size, 0, 0, 1, 128, 0, 0}, 0}, {}},
      {{{size, 0, 0, 0, 0, 2, 0}, 0}, {}},
      {{{size, 0, 0, 0, 0, 0, 4}, 0}, {}}};
  const ByteBuffer muLaw = wav({fmt({.tag = 7, .blockAlign = 1, .bits = 8}),
                                wavChunk("bext", {1, 2}), data(ByteBuffer(40, 9))});
  const ByteBuffer packed = carryOutInMemory(planConversion(guitar, {.reversible = true}), guitar);
  std::set<std::string> outputs;
  for (const auto& [given, meant] : cases)
    for (const ByteBuffer& input : {guitar, pad, muLaw, packed}) {
      const std::string expected =
          meant
              ? convertedByTheEngine(input, *meant)
              : "bad-argument corvana_plan_make_with: an option or its struct_size is not known. ";
      EXPECT_EQ(converted(input, &given.options), expected) << &given - &cases[0].first;
      outputs.insert(expected);
    }
  EXPECT_EQ(outputs.size(), 16U);  // alike are only refusals: of arguments, and twice of µ-law
}

TEST(C, RefusesBadArguments) {
  const void* in = guitar.data();
  const std::size_t size = guitar.size();
  corvana_plan* plan = nullptr;
  corvana_loop* none = nullptr;
  ByteBuffer room(2000);
  ASSERT_EQ(corvana_plan_make(in, size, &plan, nullptr), CORVANA_OK);
  corvana_plan* unmade = plan;
  auto* file = reinterpret_cast<corvana_file*>(plan);
  EXPECT_EQ(corvana_plan_make(in, 36, &unmade, nullptr), CORVANA_UNSUITABLE);
  auto error = sized<corvana_error>();
  for (const corvana_status status :
       {corvana_file_read(nullptr, 5, &file, &error), corvana_file_read(in, size, nullptr, nullptr),
        corvana_plan_make(in, size, nullptr, nullptr),
        corvana_plan_make_with(in, size, nullptr, nullptr, nullptr),
        corvana_root_key_in_name(nullptr, 4, nullptr), corvana_file_get_loop(nullptr, 0, none),
        corvana_plan_carry_out(nullptr, in, size, room.data(), 2000, nullptr),
        corvana_plan_carry_out(plan, nullptr, size, room.data(), 2000, nullptr),
        corvana_plan_carry_out(plan, in, size - 1, room.data(), 2000, nullptr),
        corvana_plan_carry_out(plan, in, size, nullptr, 2000, nullptr),
        corvana_plan_carry_out(plan, in, size, room.data(), 200, nullptr),
        corvana_plan_carry_out_to(plan, in, size, nullptr, nullptr, nullptr)})
    EXPECT_EQ(status, CORVANA_BAD_ARGUMENT);
  EXPECT_EQ(spaced(error.code, error.text), "bad-argument corvana_file_read: a pointer is null. ");
  EXPECT_TRUE(unmade == nullptr && file == nullptr && room == ByteBuffer(2000));
  const auto refuse = [](void*, const void*, std::size_t) { return -1; };
  EXPECT_EQ(corvana_plan_carry_out_to(plan, in, size, refuse, nullptr, &error), CORVANA_STOPPED);
  EXPECT_STREQ(error.code, "stopped");
  corvana_plan_free(plan);
  corvana_plan_free(nullptr);
}

TEST(C, FindsKeysInNames) {
  std::uint32_t key = 0;
  EXPECT_EQ(corvana_root_key_in_name("Piano C#3.wav", 3, &key), CORVANA_OK);
  EXPECT_EQ(key, 61U);
  EXPECT_EQ(corvana_root_key_in_name("Piano.wav", INT32_MIN, &key), CORVANA_END);
}

TEST(C, FitsOlderAndNewerCallers) {
  corvana_file* file = nullptr;
  corvana_file_read(guitar.data(), guitar.size(), &file, nullptr);
  struct {
    corvana_loop loop = sized<corvana_loop>();
    std::uint32_t newer = 0xEE, behind = 0xEE;
  } grown;
  grown.loop.struct_size += sizeof grown.newer;
  EXPECT_EQ(corvana_file_get_loop(file, 2, &grown.loop), CORVANA_OK);
  for (const std::size_t wrong : {std::size_t{0}, sizeof(corvana_loop) - 1, ~std::size_t{0}}) {
    grown.loop.struct_size = wrong;
    EXPECT_EQ(corvana_file_get_loop(file, 0, &grown.loop), CORVANA_BAD_ARGUMENT);
  }
  EXPECT_EQ(spaced(grown.loop.type, grown.newer, grown.behind), "77 0 238 ");
  corvana_plan* plan = nullptr;
  ASSERT_EQ(corvana_plan_make_with(pad.data(), pad.size(), nullptr, &plan, nullptr), CORVANA_OK);
  auto info = sized<corvana_plan_info>();
  info.struct_size = offsetof(corvana_plan_info, left_out_count);  // of version 1.0
  EXPECT_EQ(corvana_plan_get_info(plan, &info), CORVANA_OK);
  EXPECT_EQ(spaced(info.frames, info.sample_kind == 0xEEEEEEEE), "60 1 ");
  info.struct_size -= 1;
  EXPECT_EQ(corvana_plan_get_info(plan, &info), CORVANA_BAD_ARGUMENT);
  corvana_plan_free(plan);
  corvana_file_free(file);
}

TEST(C, RunsOutOfMemoryAtAnyMoment) {
  int allowed = 0;
  for (auto status = CORVANA_NO_MEMORY; status == CORVANA_NO_MEMORY; ++allowed) {
    corvana_plan* plan = nullptr;
    corvana_file* file = nullptr;
    auto error = sized<corvana_error>();
    ByteBuffer room(2000);
    allocationsLeft = allowed;
    status = corvana_file_read(guitar.data(), guitar.size(), &file, &error);
    if (file) status = corvana_plan_make(guitar.data(), guitar.size(), &plan, &error);
    if (plan)
      status =
          corvana_plan_carry_out(plan, guitar.data(), guitar.size(), room.data(), 2000, &error);
    allocationsLeft = -1;
    EXPECT_TRUE(status == CORVANA_OK ? room[0] == 'F' : error.code == std::string("out-of-memory"));
    corvana_file_free(file);
    corvana_plan_free(plan);
  }
  EXPECT_GT(allowed, 10);
}

TEST(C, ServesManyThreads) {
  corvana_plan* plan = nullptr;
  ASSERT_EQ(corvana_plan_make(pad.data(), pad.size(), &plan, nullptr), CORVANA_OK);
  const auto work = [&, expected = converted(pad)] {
    for (int i = 0; i < 100; ++i) {
      std::string parts;
      corvana_plan_carry_out_to(plan, pad.data(), pad.size(), append, &parts, nullptr);
      EXPECT_TRUE(parts.size() > 100 && expected.ends_with(parts) && expected == converted(pad));
    }
  };
  std::thread other(work);
  work();
  other.join();
  corvana_plan_free(plan);
}

}  // namespace
}  // namespace corvana
