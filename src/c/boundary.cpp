#include "c/boundary.hpp"

#include <new>
#include <string_view>

#include "vocabulary/errors.hpp"
#include "vocabulary/messages.hpp"

namespace corvana {
namespace {

// Programs that are built rely on these.
static_assert(sizeof(corvana_status) == sizeof(int));
static_assert(sizeof(void*) != 8 || (sizeof(corvana_error) == 272 &&        //
                                     sizeof(corvana_file_info) == 152 &&    //
                                     sizeof(corvana_loop) == 64 &&          //
                                     sizeof(corvana_marker) == 64 &&        //
                                     firstSize<corvana_plan_info> == 56 &&  //
                                     sizeof(corvana_plan_info) == 72 &&     //
                                     sizeof(corvana_plan_options) == 32 &&  //
                                     sizeof(corvana_warning) == 32 &&       //
                                     sizeof(corvana_left_out) == 16));

corvana_status report(corvana_error* error, corvana_status status, const char* code,
                      std::string_view text) noexcept {
  if (error == nullptr) return status;
  corvana_error record{};
  record.code = code;
  text.copy(record.text, sizeof record.text - 1);
  fill(*error, record);
  return status;
}

}  // namespace

corvana_status badArgument(corvana_error* error, const char* text) noexcept {
  return report(error, CORVANA_BAD_ARGUMENT, "bad-argument", text);
}

corvana_status reportFailure(corvana_error* error) noexcept {
  try {
    try {
      throw;
    } catch (const ConversionError& failure) {
      return report(error, CORVANA_UNSUITABLE, errorCode(failure),
                    errorDescription(failure, Language()));
    }
  } catch (const Refusal&) {
    return report(error, CORVANA_STOPPED, "stopped", "The callback has refused to go on.");
  } catch (const std::bad_alloc&) {
    return report(error, CORVANA_NO_MEMORY, "out-of-memory", "Not enough memory.");
  } catch (...) {
    return report(error, CORVANA_INTERNAL_ERROR, "internal-error", "A fault of the library.");
  }
}

}  // namespace corvana

const char* corvana_version() {
  return CORVANA_VERSION;
}
