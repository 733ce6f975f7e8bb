// SPDX-License-Identifier: Apache-2.0

#include "payload/InstallerTexts.h"

#include <string_view>

namespace {

std::string installerText(const Platform& platform, const char* key) {
  return platform.bundles.mainBundle().localizedString(key, "", "installer");
}

/// Returns a name for folders and files. A name that leads elsewhere counts as missing: installing and removing by it
/// would affect other makers' files.
std::string fileName(const Platform& platform, const char* key) {
  const std::string name = installerText(platform, key);
  return name == "." || name == ".." || name.find('/') != std::string::npos ? "" : name;
}

}  // namespace

std::string companyName(const Platform& platform) { return fileName(platform, "company_name"); }
std::string productName(const Platform& platform) { return fileName(platform, "product_name"); }
std::string productPreferencesDomain(const Platform& platform) { return installerText(platform, "app_plist"); }
std::string shownCompanyName(const Platform& platform) { return installerText(platform, "company_name"); }
std::string shownProductName(const Platform& platform) { return installerText(platform, "product_name"); }

std::string shownInText(const Platform& platform, const std::string& path) {
  constexpr std::string_view fromTheLeft = "\u2066";
  constexpr std::string_view end = "\u2069";
  const bool isMirrored = platform.bundles.mainBundle().localizedString("layout_direction") == "rightToLeft";
  return isMirrored && !path.empty() ? std::string(fromTheLeft) + path + std::string(end) : path;
}
