#include "platform/bundle_info.hpp"

#if CORVANA_HAS_GNU_C_LIBRARY
#include <gnu/libc-version.h>
#endif

namespace corvana {

const BundleInfo& mainBundleInfo() {
  static const BundleInfo info = {{bundleNameKey, "Corvana"}, {bundleVersionKey, CORVANA_VERSION}};
  return info;
}

std::string bundleValue(const BundleInfo& info, const std::string& key) {
  const auto found = info.find(key);
  return found == info.end() ? std::string() : found->second;
}

std::vector<std::string> systemLibraries() {
  std::vector<std::string> libraries;
#ifdef _GLIBCXX_RELEASE
  libraries.push_back("GNU C++ Library " + std::to_string(_GLIBCXX_RELEASE));
#endif
#if CORVANA_HAS_GNU_C_LIBRARY
  libraries.push_back(std::string("GNU C Library ") + gnu_get_libc_version());
#endif
  return libraries;
}

}  // namespace corvana
