// The information dictionary of the program: what the build knows about it.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace corvana {

/// Keys of the dictionary.
inline constexpr const char* bundleVersionKey = "CFBundleShortVersionString";
inline constexpr const char* bundleNameKey = "CFBundleName";

using BundleInfo = std::map<std::string, std::string>;

/// The dictionary of the running program.
const BundleInfo& mainBundleInfo();

/// The value of `key`, empty when it is missing.
std::string bundleValue(const BundleInfo& info, const std::string& key);

/// Names and versions of the system's libraries below the program, where they tell.
std::vector<std::string> systemLibraries();

}  // namespace corvana
