// Conversions, for C.

#include <algorithm>
#include <array>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "c/boundary.hpp"
#include "convert/carry_out.hpp"
#include "convert/plan_conversion.hpp"
#include "vocabulary/messages.hpp"
#include "vocabulary/note_name.hpp"

using namespace corvana;

struct corvana_plan {
  ConversionPlan plan;
  std::size_t inputSize;
  std::string summary;
  std::vector<std::string> warningTexts;
};

namespace {

/// The caller's memory, which is large enough.
class RoomSink : public ByteSink {
 public:
  explicit RoomSink(void* room) : next_(static_cast<std::uint8_t*>(room)) {}
  void reserve(std::uint64_t) override {}
  void append(ByteView bytes) override { next_ = std::copy(bytes.begin(), bytes.end(), next_); }

 private:
  std::uint8_t* next_;
};

/// The caller's function.
class CallbackSink : public ByteSink {
 public:
  CallbackSink(corvana_write write, void* user) : write_(write), user_(user) {}
  void reserve(std::uint64_t) override {}
  void append(ByteView bytes) override {
    if (!bytes.empty() && write_(user_, bytes.data(), bytes.size()) != 0) throw Refusal();
  }

 private:
  corvana_write write_;
  void* user_;
};

/// Absent where there is a value that nobody has defined.
std::optional<ConversionOptions> meaningOf(const corvana_plan_options& record) {
  constexpr std::array choices = {LoopChoice::all, LoopChoice::first, LoopChoice::none};
  constexpr std::uint32_t keepsAll = CORVANA_KEEP_NAMES | CORVANA_KEEP_TEXTS;
  const auto isFlag = [](std::uint32_t value) { return value <= 1; };
  if (!isFlag(record.any_encoding) || !isFlag(record.has_root_key) || !isFlag(record.reversible) ||
      record.loops >= choices.size() || (record.keep & ~keepsAll) != 0 ||
      (record.has_root_key == 1 && record.root_key > 127))
    return std::nullopt;
  ConversionOptions options;
  options.anyEncoding = record.any_encoding == 1;
  options.loops = choices.at(record.loops);
  if (record.has_root_key == 1) options.rootKey = static_cast<std::uint8_t>(record.root_key);
  options.reversible = record.reversible == 1;
  options.keepNames = (record.keep & CORVANA_KEEP_NAMES) != 0;
  options.keepTexts = (record.keep & CORVANA_KEEP_TEXTS) != 0;
  return options;
}

/// The same of the caller's struct, which may be null.
std::optional<ConversionOptions> optionsOf(const corvana_plan_options* options) {
  if (options == nullptr) return ConversionOptions();
  if (!isUsable(options)) return std::nullopt;
  const auto record = taken(*options);
  return record ? meaningOf(*record) : std::nullopt;
}

/// The texts are made here, so that threads that share a plan need not take turns.
corvana_plan* makePlan(ByteView input, const ConversionOptions& options) {
  const Language english;
  ConversionPlan plan = planConversion(input, options);
  std::string summary = makeSummary(plan.summary, english);
  std::vector<std::string> texts;
  texts.reserve(plan.warnings.size());
  for (const Warning& warning : plan.warnings)
    texts.push_back(warningText(warning, english));
  return new corvana_plan{std::move(plan), input.size(), std::move(summary), std::move(texts)};
}

std::uint32_t sampleKindOf(SampleEncoding encoding) {
  switch (encoding) {
    case SampleEncoding::integer:
      return CORVANA_SAMPLES_INTEGER;
    case SampleEncoding::floatingPoint:
      return CORVANA_SAMPLES_FLOATING_POINT;
    case SampleEncoding::aLaw:
      return CORVANA_SAMPLES_A_LAW;
    case SampleEncoding::muLaw:
      return CORVANA_SAMPLES_MU_LAW;
  }
  return CORVANA_SAMPLES_UNKNOWN;
}

bool isInputOf(const corvana_plan* plan, const void* bytes, std::size_t size) {
  return plan != nullptr && bytes != nullptr && size == plan->inputSize;
}

}  // namespace

corvana_status corvana_plan_make(const void* bytes, size_t size, corvana_plan** plan,
                                 corvana_error* error) {
  if (plan != nullptr) *plan = nullptr;
  return guarded(error, [&] {
    if (plan == nullptr || !areThere(bytes, size))
      return badArgument(error, "corvana_plan_make: a pointer is null.");
    *plan = makePlan(view(bytes, size), {});
    return CORVANA_OK;
  });
}

corvana_status corvana_plan_make_with(const void* bytes, size_t size,
                                      const corvana_plan_options* options, corvana_plan** plan,
                                      corvana_error* error) {
  if (plan != nullptr) *plan = nullptr;
  return guarded(error, [&] {
    if (plan == nullptr || !areThere(bytes, size))
      return badArgument(error, "corvana_plan_make_with: a pointer is null.");
    const auto known = optionsOf(options);
    if (!known)
      return badArgument(error,
                         "corvana_plan_make_with: an option or its struct_size is not known.");
    *plan = makePlan(view(bytes, size), *known);
    return CORVANA_OK;
  });
}

corvana_status corvana_root_key_in_name(const char* name, int32_t middle_c, uint32_t* root_key) {
  return guarded(nullptr, [&] {
    if (name == nullptr || root_key == nullptr) return CORVANA_BAD_ARGUMENT;
    const auto key = noteInFileName(name, middle_c);
    if (key) *root_key = *key;
    return key ? CORVANA_OK : CORVANA_END;
  });
}

void corvana_plan_free(corvana_plan* plan) {
  delete plan;
}

corvana_status corvana_plan_get_info(const corvana_plan* plan, corvana_plan_info* info) {
  if (plan == nullptr || !isUsable(info)) return CORVANA_BAD_ARGUMENT;
  corvana_plan_info record{};
  record.format = plan->plan.makesWAV() ? CORVANA_WAV : CORVANA_AIFF;
  record.sample_rate = plan->plan.summary.sampleRate;
  record.output_size = plan->plan.outputSize();
  record.frames = plan->plan.samples.frameCount;
  record.warning_count = plan->warningTexts.size();
  record.summary = plan->summary.c_str();
  record.summary_size = plan->summary.size();
  record.left_out_count = plan->plan.leftOut.size();
  record.sample_kind = sampleKindOf(plan->plan.summary.encoding);
  record.is_restored = plan->plan.summary.isRestored;
  fill(*info, record);
  return CORVANA_OK;
}

corvana_status corvana_plan_get_warning(const corvana_plan* plan, size_t index,
                                        corvana_warning* warning) {
  if (plan == nullptr || !isUsable(warning)) return CORVANA_BAD_ARGUMENT;
  if (index >= plan->warningTexts.size()) return CORVANA_END;
  const std::string& text = plan->warningTexts[index];
  corvana_warning record{};
  record.code = warningCode(plan->plan.warnings[index].kind);
  record.text = text.c_str();
  record.text_size = text.size();
  fill(*warning, record);
  return CORVANA_OK;
}

corvana_status corvana_plan_get_left_out(const corvana_plan* plan, size_t index,
                                         corvana_left_out* left_out) {
  if (plan == nullptr || !isUsable(left_out)) return CORVANA_BAD_ARGUMENT;
  if (index >= plan->plan.leftOut.size()) return CORVANA_END;
  corvana_left_out record{};
  record.chunk = plan->plan.leftOut[index].c_str();
  fill(*left_out, record);
  return CORVANA_OK;
}

corvana_status corvana_plan_carry_out(const corvana_plan* plan, const void* bytes, size_t size,
                                      void* output, size_t capacity, corvana_error* error) {
  return guarded(error, [&] {
    if (!isInputOf(plan, bytes, size) || output == nullptr)
      return badArgument(error,
                         "corvana_plan_carry_out: a pointer is null, or this is another input.");
    if (capacity < plan->plan.outputSize())
      return badArgument(error, "corvana_plan_carry_out: the output needs more room.");
    RoomSink sink(output);
    carryOut(plan->plan, MemorySource(view(bytes, size)), sink, {});
    return CORVANA_OK;
  });
}

corvana_status corvana_plan_carry_out_to(const corvana_plan* plan, const void* bytes, size_t size,
                                         corvana_write write, void* user, corvana_error* error) {
  return guarded(error, [&] {
    if (!isInputOf(plan, bytes, size) || write == nullptr)
      return badArgument(error,
                         "corvana_plan_carry_out_to: a pointer is null, or this is another input.");
    CallbackSink sink(write, user);
    carryOut(plan->plan, MemorySource(view(bytes, size)), sink, {});
    return CORVANA_OK;
  });
}
