#include "platform/bundle_info.hpp"

namespace corvana {

const BundleInfo& mainBundleInfo() {
  static const BundleInfo info = {{bundleNameKey, "Corvana"}, {bundleVersionKey, CORVANA_VERSION}};
  return info;
}

std::string bundleValue(const BundleInfo& info, const std::string& key) {
  const auto found = info.find(key);
  return found == info.end() ? std::string() : found->second;
}

}  // namespace corvana
