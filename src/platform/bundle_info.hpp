// The information dictionary of the program: what the build knows about it.
#pragma once

#include <map>
#include <string>

namespace corvana {

/// Keys of the dictionary.
inline constexpr const char* bundleVersionKey = "CFBundleShortVersionString";
inline constexpr const char* bundleNameKey = "CFBundleName";

using BundleInfo = std::map<std::string, std::string>;

/// The dictionary of the running program.
const BundleInfo& mainBundleInfo();

/// The value of `key`, empty when it is missing.
std::string bundleValue(const BundleInfo& info, const std::string& key);

}  // namespace corvana
