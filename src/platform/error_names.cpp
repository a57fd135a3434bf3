#include "platform/error_names.hpp"

#if CORVANA_HAS_ERROR_NAMES
#include <cstring>
#else
#include <algorithm>
#include <cerrno>
#include <iterator>
#endif

namespace corvana {

#if CORVANA_HAS_ERROR_NAMES

std::string errorName(int errorNumber) {
  const char* const name = ::strerrorname_np(errorNumber);
  return name == nullptr ? "" : name;
}

#else

namespace {

struct NamedError {
  int number;
  const char* name;
};

#define NAMED(error) \
  { error, #error }

/// Those of POSIX that have to do with files. Of two names for one number the first counts.
constexpr NamedError namedErrors[] = {
    NAMED(EACCES),    NAMED(EAGAIN),       NAMED(EBADF),  NAMED(EBUSY),      NAMED(EDQUOT),
    NAMED(EEXIST),    NAMED(EFAULT),       NAMED(EFBIG),  NAMED(EILSEQ),     NAMED(EINTR),
    NAMED(EINVAL),    NAMED(EIO),          NAMED(EISDIR), NAMED(ELOOP),      NAMED(EMFILE),
    NAMED(EMLINK),    NAMED(ENAMETOOLONG), NAMED(ENFILE), NAMED(ENODEV),     NAMED(ENOENT),
    NAMED(ENOLCK),    NAMED(ENOMEM),       NAMED(ENOSPC), NAMED(ENOSYS),     NAMED(ENOTDIR),
    NAMED(ENOTEMPTY), NAMED(ENOTSUP),      NAMED(ENXIO),  NAMED(EOPNOTSUPP), NAMED(EOVERFLOW),
    NAMED(EPERM),     NAMED(EPIPE),        NAMED(EROFS),  NAMED(ESPIPE),     NAMED(ESTALE),
    NAMED(ETIMEDOUT), NAMED(ETXTBSY),      NAMED(EXDEV),
};

}  // namespace

std::string errorName(int errorNumber) {
  const NamedError* const found =
      std::find_if(std::begin(namedErrors), std::end(namedErrors),
                   [&](const NamedError& error) { return error.number == errorNumber; });
  return found == std::end(namedErrors) ? "" : found->name;
}

#endif

}  // namespace corvana
